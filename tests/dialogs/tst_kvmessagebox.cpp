#include "dialogs/kvmessagebox.h"

#include "tests/dialogs/messageparts.h"

#include <QAction>
#include <QApplication>
#include <QPointer>
#include <QStyle>
#include <QTest>

#include <array>

Q_DECLARE_METATYPE(kvMessageIcon)

/// How the dialog is built: what it looks like before anybody answers it.
class TestKvMessageBox : public QObject
{
    Q_OBJECT

private slots:
    void isADialogOfFixedSizeWithoutTitle();
    void staysWithinItsSizes();
    void isNeitherShownNorModalUnlessAsked();
    void spacesItsLayouts();
    void sharesSpareHeightBetweenTextAndHint();
    void centresItsAnswerButtons();
    void hasNoSecondButtonWithoutItsText();
    void keepsABlankFirstButtonWithoutText();
    void focusesTheFirstButton();
    void hasACancelButtonWhereThereIsAFlag();
    void hasNoCancelButtonWithoutAFlag();
    void saysHowToCopy();
    void showsThePictureOfWarningAndCriticalOnly_data();
    void showsThePictureOfWarningAndCriticalOnly();
    void leavesAnEmptyAreaForOtherIcons_data();
    void leavesAnEmptyAreaForOtherIcons();
    void putsTheIconAtTheTopLeft();
    void showsTheShortenedTextAsItIs();
    void isCalledByItsText();
    void letsQtChooseBetweenPlainAndRichText();
    void centresTheTextOnlyWhereAsked();
    void showsMonospaceTextInCourier();
    void makesActionsInOrder_data();
    void makesActionsInOrder();
    void takesItsPartsWithIt();
};

void TestKvMessageBox::isADialogOfFixedSizeWithoutTitle()
{
    QWidget window;
    MessageSettings settings;
    settings.parent = &window;
    const auto box = makeMessage(settings);
    QCOMPARE(box->windowType(), Qt::Dialog);
    QVERIFY(box->windowFlags().testFlag(Qt::MSWindowsFixedSizeDialogHint));
    QCOMPARE(box->windowTitle(), QString());
    QCOMPARE(box->parentWidget(), &window);
}

void TestKvMessageBox::staysWithinItsSizes()
{
    const auto box = makeMessage({});
    QCOMPARE(box->minimumSize(), QSize(256, 128));
    QCOMPARE(box->maximumSize(), QSize(1700, 1000));
}

void TestKvMessageBox::isNeitherShownNorModalUnlessAsked()
{
    const auto box = makeMessage({});
    QVERIFY(!box->isVisible());
    QCOMPARE(box->windowModality(), Qt::NonModal);
}

void TestKvMessageBox::spacesItsLayouts()
{
    const auto box = makeMessage({});
    const MessageParts parts(*box);
    QCOMPARE(parts.main->spacing(), 10);
    QCOMPARE(parts.main->contentsMargins(), QMargins(10, 20, 25, 0));
    QCOMPARE(parts.column->spacing(), 7);
    QCOMPARE(parts.column->contentsMargins(), QMargins());
    QCOMPARE(parts.row->spacing(), 20);
    QCOMPARE(parts.row->contentsMargins(), QMargins());
}

void TestKvMessageBox::sharesSpareHeightBetweenTextAndHint()
{
    bool cancelled = false;
    MessageSettings settings;
    settings.cancelled = &cancelled;
    const auto box = makeMessage(settings);
    const MessageParts parts(*box);
    QCOMPARE(parts.column->count(), 4);
    const std::array<int, 4> stretches{132, 0, 0, 132};
    for (int row = 0; row < 4; ++row)
        QCOMPARE(parts.column->stretch(row), stretches.at(row));
    QCOMPARE(parts.column->itemAt(0)->alignment(), Qt::Alignment());
    QCOMPARE(parts.column->itemAt(3)->alignment(), Qt::Alignment());
}

void TestKvMessageBox::centresItsAnswerButtons()
{
    MessageSettings settings;
    settings.second = "Abort";
    const auto box = makeMessage(settings);
    const MessageParts parts(*box);
    QCOMPARE(parts.row->count(), 4);
    for (const int place : {0, 3}) {
        QSpacerItem* spacer = parts.row->itemAt(place)->spacerItem();
        QVERIFY(spacer != nullptr);
        QCOMPARE(spacer->sizeHint(), QSize(5, 5));
        QCOMPARE(spacer->sizePolicy(), QSizePolicy(QSizePolicy::Expanding, QSizePolicy::Minimum));
    }
    QCOMPARE(parts.button1->text(), QString("Ok"));
    QCOMPARE(parts.button2->text(), QString("Abort"));
    for (const int place : {1, 2}) {
        QCOMPARE(parts.row->itemAt(place)->alignment(), Qt::Alignment(Qt::AlignCenter));
        QCOMPARE(parts.row->itemAt(place)->widget()->minimumSize(), QSize(130, 20));
    }
}

void TestKvMessageBox::hasNoSecondButtonWithoutItsText()
{
    const auto box = makeMessage({});
    QCOMPARE(MessageParts(*box).row->count(), 3);
    QCOMPARE(box->findChildren<QPushButton*>().size(), 1);
}

void TestKvMessageBox::keepsABlankFirstButtonWithoutText()
{
    MessageSettings settings;
    settings.first = QString();
    settings.second = "Abort";
    const auto box = makeMessage(settings);
    const MessageParts parts(*box);
    QVERIFY(parts.button1 != nullptr);
    QCOMPARE(parts.button1->text(), QString());
    QCOMPARE(parts.button1->minimumSize(), QSize(130, 20));
}

void TestKvMessageBox::focusesTheFirstButton()
{
    bool cancelled = false;
    MessageSettings settings;
    settings.second = "Abort";
    settings.cancelled = &cancelled;
    const auto box = makeMessage(settings);
    QCOMPARE(box->focusWidget(), MessageParts(*box).button1);
    box->show();
    box->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(box.get()));
    QCOMPARE(QApplication::focusWidget(), MessageParts(*box).button1);
}

void TestKvMessageBox::hasACancelButtonWhereThereIsAFlag()
{
    bool cancelled = false;
    MessageSettings settings;
    settings.cancelled = &cancelled;
    const auto box = makeMessage(settings);
    const MessageParts parts(*box);
    QVERIFY(parts.cancel != nullptr);
    QCOMPARE(parts.cancel->text(), QString("cancel"));
    QCOMPARE(parts.cancel->maximumSize(), QSize(50, 16));
    QCOMPARE(parts.column->itemAt(2)->alignment(), Qt::Alignment(Qt::AlignCenter));
    QVERIFY2(cancelled, "nobody has answered yet");
}

void TestKvMessageBox::hasNoCancelButtonWithoutAFlag()
{
    const auto box = makeMessage({});
    QCOMPARE(MessageParts(*box).column->count(), 3);
}

void TestKvMessageBox::saysHowToCopy()
{
    const auto box = makeMessage({});
    const QLabel* hint = MessageParts(*box).hint;
    QCOMPARE(hint->text(), QString("<font color=\"#666666\">Copy message text with CTRL-C</font>"));
    QCOMPARE(hint->alignment(), Qt::Alignment(Qt::AlignCenter));
}

void TestKvMessageBox::showsThePictureOfWarningAndCriticalOnly_data()
{
    QTest::addColumn<kvMessageIcon>("icon");
    QTest::addColumn<int>("number");
    QTest::addColumn<int>("picture");
    QTest::newRow("information") << kvMessageIcon::Information << 1 << -1;
    QTest::newRow("warning") << kvMessageIcon::Warning << 2 << int(QStyle::SP_MessageBoxWarning);
    QTest::newRow("critical") << kvMessageIcon::Critical << 3 << int(QStyle::SP_MessageBoxCritical);
    QTest::newRow("question") << kvMessageIcon::Question << 4 << -1;
}

void TestKvMessageBox::showsThePictureOfWarningAndCriticalOnly()
{
    QFETCH(const kvMessageIcon, icon);
    QFETCH(const int, picture);
    QTEST(int(icon), "number");
    QCOMPARE(sizeof icon, sizeof(std::int32_t));

    MessageSettings settings;
    settings.icon = icon;
    const auto box = makeMessage(settings);
    const MessageParts parts(*box);
    QCOMPARE(parts.icon != nullptr, picture >= 0);
    QCOMPARE(parts.main->count(), picture >= 0 ? 2 : 1);
    QCOMPARE(box->findChildren<QLabel*>().size(), picture >= 0 ? 3 : 2);
    if (picture < 0)
        return;
    const int size = box->style()->pixelMetric(QStyle::PM_MessageBoxIconSize);
    const QIcon standard = box->style()->standardIcon(QStyle::StandardPixmap(picture));
    const QImage shown = parts.icon->pixmap(Qt::ReturnByValue).toImage();
    QVERIFY(!shown.isNull());
    QCOMPARE(shown, standard.pixmap(QSize(size, size), QIcon::Normal).toImage());
}

void TestKvMessageBox::leavesAnEmptyAreaForOtherIcons_data()
{
    QTest::addColumn<int>("number");
    for (const int number : {0, 5, 7, -1})
        QTest::newRow(qPrintable(QString::number(number))) << number;
}

void TestKvMessageBox::leavesAnEmptyAreaForOtherIcons()
{
    QFETCH(const int, number);
    MessageSettings settings;
    settings.icon = static_cast<kvMessageIcon>(number);
    const auto box = makeMessage(settings);
    const MessageParts parts(*box);
    QCOMPARE(parts.main->count(), 2);
    QVERIFY(parts.icon->pixmap(Qt::ReturnByValue).isNull());
    QCOMPARE(parts.icon->text(), QString());
}

void TestKvMessageBox::putsTheIconAtTheTopLeft()
{
    MessageSettings settings;
    settings.icon = kvMessageIcon::Warning;
    settings.text = QString(10, '\n');
    const auto box = makeMessage(settings);
    const MessageParts parts(*box);
    QCOMPARE(parts.main->itemAt(0)->alignment(), Qt::Alignment(Qt::AlignTop));
    box->show();
    QVERIFY(QTest::qWaitForWindowExposed(box.get()));
    QCOMPARE(parts.icon->pos(), QPoint(10, 20));
    QVERIFY(parts.text->x() > parts.icon->geometry().right());
}

void TestKvMessageBox::isCalledByItsText()
{
    MessageSettings settings;
    settings.text = "Config files have been saved.\n\nThere is more.";
    QCOMPARE(makeMessage(settings)->accessibleName(), settings.text);
}

void TestKvMessageBox::showsTheShortenedTextAsItIs()
{
    MessageSettings settings;
    settings.text = QString(5000, 'x') + QString(46, '\n');
    const auto box = makeMessage(settings);
    const QLabel* label = MessageParts(*box).text;
    const QStringList lines = label->text().split('\n');
    QCOMPARE(lines.size(), 47);
    QCOMPARE(lines.first(), QString(5000, 'x'));
    QCOMPARE(lines.at(4), QString("[...SNIP (Message dialog size exceeded) ...]"));
    QVERIFY(!label->wordWrap());
}

void TestKvMessageBox::letsQtChooseBetweenPlainAndRichText()
{
    const auto box = makeMessage({});
    QCOMPARE(MessageParts(*box).text->textFormat(), Qt::AutoText);
}

void TestKvMessageBox::centresTheTextOnlyWhereAsked()
{
    MessageSettings settings;
    const auto centred = makeMessage(settings);
    QCOMPARE(MessageParts(*centred).text->alignment(), Qt::Alignment(Qt::AlignCenter));
    settings.centred = false;
    const auto plain = makeMessage(settings);
    QCOMPARE(MessageParts(*plain).text->alignment(), QLabel().alignment());
}

void TestKvMessageBox::showsMonospaceTextInCourier()
{
    MessageSettings settings;
    const auto plain = makeMessage(settings);
    QCOMPARE(MessageParts(*plain).text->font(), QApplication::font());

    settings.monospace = true;
    const auto monospace = makeMessage(settings);
    const MessageParts parts(*monospace);
    QCOMPARE(parts.text->font().family(), QString("Courier"));
    QCOMPARE(parts.text->font().pointSizeF(), QFont().pointSizeF());
    QCOMPARE(parts.text->font().weight(), QFont().weight());
    QCOMPARE(parts.button1->font(), QApplication::font());
}

void TestKvMessageBox::makesActionsInOrder_data()
{
    QTest::addColumn<QString>("first");
    QTest::addColumn<QString>("second");
    QTest::addColumn<QStringList>("shortcuts");
    QTest::newRow("one button") << "Ok"
                                << "" << QStringList{"O", "Ctrl+C"};
    QTest::newRow("two buttons") << "&Yes"
                                 << "No" << QStringList{"Y", "N", "Ctrl+C"};
    QTest::newRow("blank first") << ""
                                 << "No" << QStringList{"N", "Ctrl+C"};
    QTest::newRow("equal letters") << "Ok"
                                   << "Open" << QStringList{"Ctrl+C"};
}

void TestKvMessageBox::makesActionsInOrder()
{
    QFETCH(const QString, first);
    QFETCH(const QString, second);
    MessageSettings settings;
    settings.first = first;
    settings.second = second;
    const auto box = makeMessage(settings);
    QStringList shortcuts;
    for (const QAction* action : box->actions())
        shortcuts << action->shortcut().toString(QKeySequence::PortableText);
    QTEST(shortcuts, "shortcuts");
}

void TestKvMessageBox::takesItsPartsWithIt()
{
    bool cancelled = false;
    MessageSettings settings;
    settings.icon = kvMessageIcon::Warning;
    settings.second = "Abort";
    settings.cancelled = &cancelled;
    auto box = makeMessage(settings);
    QVector<QPointer<QObject>> children;
    for (QObject* child : box->children())
        children << child;
    // The layout, three labels, three buttons and three actions.
    QCOMPARE(children.size(), 10);
    box.reset();
    for (const auto& child : children)
        QVERIFY(child.isNull());
}

QTEST_MAIN(TestKvMessageBox)
#include "tst_kvmessagebox.moc"
