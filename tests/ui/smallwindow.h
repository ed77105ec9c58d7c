#pragma once

#include "tests/ui/cuttexts.h"
#include "ui/fittexts.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QScreen>
#include <QSpacerItem>
#include <QVBoxLayout>

// The same on every platform, whatever its own font is.
inline void useSmallLetters()
{
    QFont font = QApplication::font();
    font.setPixelSize(7);
    QApplication::setFont(font);
}

inline QSize screenSize()
{
    return QGuiApplication::primaryScreen()->availableSize();
}

// Two columns of texts that fit into the smallest screen that tests run on. The group box hides
// from the layouts what its texts need, as a minimum width of one's own does.
class SmallWindow : public QMainWindow
{
public:
    SmallWindow()
    {
        setCentralWidget(new QWidget);
        auto* row = new QHBoxLayout(centralWidget());
        m_left = addLabel(*row);
        auto* right = new QVBoxLayout;
        row->addLayout(right);
        auto* box = new QGroupBox("A box");
        box->setObjectName("box");
        box->setMinimumWidth(50);
        right->addWidget(box);
        auto* inBox = new QVBoxLayout(box);
        m_check = new QCheckBox("A check box that cannot wrap");
        m_check->setObjectName("check");
        inBox->addWidget(m_check);
        m_right = addLabel(*right);
        right->addSpacerItem(new QSpacerItem(0, 100, QSizePolicy::Minimum, QSizePolicy::Expanding));
        resize(firstSize());
        fitTexts(*this);
    }

    static QSize firstSize() { return {120, 90}; }
    static QString words(int count) { return QString("some words ").repeated(count).trimmed(); }

    QLabel& left() { return *m_left; }
    QLabel& right() { return *m_right; }
    QCheckBox& check() { return *m_check; }

private:
    static QLabel* addLabel(QBoxLayout& layout)
    {
        auto* label = new QLabel(words(10));
        label->setObjectName("label");
        label->setWordWrap(true);
        layout.addWidget(label);
        return label;
    }

    QLabel* m_left = nullptr;
    QLabel* m_right = nullptr;
    QCheckBox* m_check = nullptr;
};
