#include "dialogs/kvmessagebox.h"

#include "tests/dialogs/messageparts.h"

#include <QAction>
#include <QMetaMethod>
#include <QTest>

#include <array>
#include <cstring>
#include <type_traits>

/// The shape of the class: what its order of declarations and its overrides come to.
class TestKvMessageClass : public QObject
{
    Q_OBJECT

private slots:
    void listsItsSlotsInOrder();
    void overridesTimerEventOnly();
    void keepsItsMembersInOrder();
};

void TestKvMessageClass::listsItsSlotsInOrder()
{
    const QMetaObject& meta = kvMessageBox::staticMetaObject;
    QCOMPARE(meta.superClass(), &QDialog::staticMetaObject);
    QStringList own;
    for (int index = meta.methodOffset(); index < meta.methodCount(); ++index) {
        QCOMPARE(meta.method(index).methodType(), QMetaMethod::Slot);
        own << meta.method(index).methodSignature();
    }
    QCOMPARE(own, (QStringList{"copyToClipBoard()", "Button1Pressed()", "Button2Pressed()"}));
}

namespace {

/// Whether kvMessageBox declares this member function itself.
template <typename Class, typename Result, typename... Arguments>
constexpr bool isOwn(Result (Class::* /*operation*/)(Arguments...))
{
    return std::is_same_v<Class, kvMessageBox>;
}
template <typename Class, typename Result, typename... Arguments>
constexpr bool isOwn(Result (Class::* /*operation*/)(Arguments...) const)
{
    return std::is_same_v<Class, kvMessageBox>;
}

/// Opens the protected operations to a look at their declarations.
class Opened : public kvMessageBox
{
public:
    using kvMessageBox::changeEvent;
    using kvMessageBox::closeEvent;
    using kvMessageBox::contextMenuEvent;
    using kvMessageBox::event;
    using kvMessageBox::eventFilter;
    using kvMessageBox::keyPressEvent;
    using kvMessageBox::paintEvent;
    using kvMessageBox::resizeEvent;
    using kvMessageBox::showEvent;
    using kvMessageBox::timerEvent;
};

} // namespace

void TestKvMessageClass::overridesTimerEventOnly()
{
    QVERIFY(isOwn(&Opened::metaObject));
    QVERIFY(isOwn(&Opened::qt_metacast));
    QVERIFY(isOwn(&Opened::qt_metacall));
    QVERIFY(isOwn(&Opened::timerEvent));

    QVERIFY(!isOwn(&Opened::accept));
    QVERIFY(!isOwn(&Opened::changeEvent));
    QVERIFY(!isOwn(&Opened::closeEvent));
    QVERIFY(!isOwn(&Opened::contextMenuEvent));
    QVERIFY(!isOwn(&Opened::done));
    QVERIFY(!isOwn(&Opened::event));
    QVERIFY(!isOwn(&Opened::eventFilter));
    QVERIFY(!isOwn(&Opened::exec));
    QVERIFY(!isOwn(&Opened::keyPressEvent));
    QVERIFY(!isOwn(&Opened::minimumSizeHint));
    QVERIFY(!isOwn(&Opened::open));
    QVERIFY(!isOwn(&Opened::paintEvent));
    QVERIFY(!isOwn(&Opened::reject));
    QVERIFY(!isOwn(&Opened::resizeEvent));
    QVERIFY(!isOwn(&Opened::setVisible));
    QVERIFY(!isOwn(&Opened::showEvent));
    QVERIFY(!isOwn(&Opened::sizeHint));
}

// The members are private, so that this looks at the object itself: word by word behind its base.
void TestKvMessageClass::keepsItsMembersInOrder()
{
    bool cancelled = false;
    MessageSettings settings;
    settings.icon = kvMessageIcon::Warning;
    settings.first = "Yes";
    settings.countdown = 77;
    settings.second = "No";
    settings.cancelled = &cancelled;
    const auto box = makeMessage(settings);
    const MessageParts parts(*box);
    const auto actions = box->actions();

    std::array<const void*, 13> members{};
    const auto* firstMember = reinterpret_cast<const char*>(box.get()) + sizeof(QDialog);
    std::memcpy(members.data(), firstMember, sizeof members);
    const std::array<const void*, 13> expected{
        parts.button1,
        parts.button2,
        parts.cancel,
        parts.row->itemAt(0),
        parts.row->itemAt(3),
        settings.first.data_ptr(), // shared with the member
        parts.icon,
        parts.text,
        parts.hint,
        actions.at(2),
        actions.at(0),
        actions.at(1),
        &cancelled,
    };
    for (std::size_t member = 0; member < members.size(); ++member)
        QVERIFY2(members.at(member) == expected.at(member), qPrintable(QString::number(member)));

    std::int32_t countdown = 0;
    std::memcpy(&countdown, firstMember + sizeof members, sizeof countdown);
    QCOMPARE(countdown, 77);
    QCOMPARE(sizeof(kvMessageBox), sizeof(QDialog) + sizeof members + sizeof(void*));
}

QTEST_MAIN(TestKvMessageClass)
#include "tst_kvmessageclass.moc"
