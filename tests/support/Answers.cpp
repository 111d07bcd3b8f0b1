#include "tests/support/Answers.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QDialogButtonBox>
#include <QElapsedTimer>
#include <QFileDialog>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include <deque>

namespace test {

namespace {

constexpr int PollInterval = 5;         ///< milliseconds
constexpr qint64 LongestAnswer = 30000; ///< milliseconds that one window may take to be dealt with

std::string Utf8(const QString& text) {
    return text.toStdString();
}

QMessageBox::Icon BoxIcon(forms::Icon icon) {
    switch (icon) {
    case forms::Icon::Critical:
        return QMessageBox::Critical;
    case forms::Icon::Question:
        return QMessageBox::Question;
    case forms::Icon::Exclamation:
        return QMessageBox::Warning;
    case forms::Icon::Information:
        return QMessageBox::Information;
    }
    return QMessageBox::NoIcon;
}

std::string Describe(const QWidget& window) {
    if (const auto* box = qobject_cast<const QMessageBox*>(&window))
        return "message box \"" + Utf8(box->text()) + "\"";
    return std::string(window.metaObject()->className()) + " " + Utf8(window.objectName()) + " \"" +
           Utf8(window.windowTitle()) + "\"";
}

QString ButtonText(const QMessageBox& box, QMessageBox::StandardButton which) {
    const QAbstractButton* button = box.button(which);
    QString text = button ? button->text() : QString();
    return text.remove(u'&');
}

void Click(QMessageBox& box, QMessageBox::StandardButton which) {
    if (QAbstractButton* button = box.button(which))
        QTest::mouseClick(button, Qt::LeftButton);
}

/// Takes a window that nobody can answer off the screen.
void CloseAnyhow(QWidget& window) {
    auto* box = qobject_cast<QMessageBox*>(&window);
    if (!box)
        window.close();
    else if (box->standardButtons() & QMessageBox::No)
        Click(*box, QMessageBox::No);
    else
        Click(*box, QMessageBox::Ok);
    if (window.isVisible())
        window.hide();
}

/// What every box of the program has, whatever it says.
void CheckBox(const QMessageBox& box, forms::Icon icon, bool isQuestion) {
    EXPECT_EQ(Utf8(box.windowTitle()), "Zavelik") << Describe(box);
    EXPECT_EQ(box.icon(), BoxIcon(icon)) << Describe(box);
    if (isQuestion) {
        EXPECT_EQ(box.standardButtons(), QMessageBox::Yes | QMessageBox::No) << Describe(box);
        EXPECT_EQ(Utf8(ButtonText(box, QMessageBox::Yes)), "Да");
        EXPECT_EQ(Utf8(ButtonText(box, QMessageBox::No)), "Нет");
    } else {
        EXPECT_EQ(box.standardButtons(), QMessageBox::Ok) << Describe(box);
    }
}

using Act = std::function<void(QWidget&)>;

struct Expectation {
    std::string what;
    Act act;
};

/// The act of an expectation that wants a window of one class; any other window fails the test and is closed.
template <class Window>
Act For(std::function<void(Window&)> act) {
    return [act = std::move(act)](QWidget& widget) {
        auto* window = qobject_cast<Window*>(&widget);
        if (window) {
            act(*window);
            return;
        }
        ADD_FAILURE() << "another window came: " << Describe(widget);
        CloseAnyhow(widget);
    };
}

void ChooseFromMenu(QMenu& menu, const QString& menuName, const QString& entryName) {
    EXPECT_EQ(Utf8(menu.objectName()), Utf8(menuName));
    if (entryName.isEmpty()) {
        QTest::keyClick(&menu, Qt::Key_Escape);
        return;
    }
    for (QAction* entry : menu.actions()) {
        if (entry->objectName() != entryName)
            continue;
        EXPECT_TRUE(entry->isEnabled()) << Utf8(entryName);
        QTest::mouseClick(&menu, Qt::LeftButton, Qt::NoModifier, menu.actionGeometry(entry).center());
        return;
    }
    ADD_FAILURE() << "no entry " << Utf8(entryName) << " in menu " << Utf8(menuName);
    menu.close();
}

} // namespace

void TypeIntoFileDialog(QFileDialog& dialog, const QString& path) {
    auto* buttons = dialog.findChild<QDialogButtonBox*>(QStringLiteral("buttonBox"));
    const bool saves = dialog.acceptMode() == QFileDialog::AcceptSave;
    const auto accept = saves ? QDialogButtonBox::Save : QDialogButtonBox::Open;
    if (!path.isEmpty()) {
        auto* name = dialog.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
        name->setText(path);
    }
    QTest::mouseClick(buttons->button(path.isEmpty() ? QDialogButtonBox::Cancel : accept), Qt::LeftButton);
}

struct Answers::Impl : QObject {
    std::deque<Expectation> expected;
    /// Windows whose answer is running: a click that raises a further box returns only after that box.
    struct Acting {
        QPointer<QWidget> window;
        QElapsedTimer since;
    };
    std::vector<Acting> acting;

    void PollAgain() {
        // A fresh timer each time: one whose slot is running does not fire in a loop inside it.
        QTimer::singleShot(PollInterval, this, [this] { Poll(); });
    }

    void Poll() {
        PollAgain();
        QWidget* window = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        if (!window)
            window = QApplication::activeModalWidget();
        if (window && window->isVisible())
            Deal(*window);
    }

    void Deal(QWidget& window) {
        for (Acting& running : acting) {
            if (running.window != &window)
                continue;
            if (running.since.hasExpired(LongestAnswer)) {
                ADD_FAILURE() << "still open: " << Describe(window);
                CloseAnyhow(window);
            }
            return;
        }
        if (expected.empty()) {
            ADD_FAILURE() << "nobody expected " << Describe(window);
            CloseAnyhow(window);
            return;
        }
        const Expectation next = expected.front();
        expected.pop_front();
        SCOPED_TRACE(next.what);
        acting.push_back({&window, {}});
        acting.back().since.start();
        next.act(window);
        acting.pop_back();
    }

    void Expect(std::string what, Act act) { expected.push_back({std::move(what), std::move(act)}); }
};

Answers::Answers()
    : m(std::make_unique<Impl>()) {
    m->PollAgain();
}

Answers::~Answers() {
    for (const Expectation& missing : m->expected)
        ADD_FAILURE() << "never came: " << missing.what;
}

Answers& Answers::Box(const QString& text, forms::Icon icon) {
    m->Expect("box \"" + Utf8(text) + "\"", For<QMessageBox>([=](QMessageBox& box) {
                  EXPECT_EQ(Utf8(box.text()), Utf8(text));
                  CheckBox(box, icon, false);
                  Click(box, QMessageBox::Ok);
              }));
    return *this;
}

Answers& Answers::BoxStarting(const QString& start, forms::Icon icon,
                              std::function<void(const QString&)> look) {
    m->Expect("box starting \"" + Utf8(start) + "\"",
              For<QMessageBox>([start, icon, look = std::move(look)](QMessageBox& box) {
                  EXPECT_TRUE(box.text().startsWith(start)) << Utf8(box.text());
                  CheckBox(box, icon, false);
                  if (look)
                      look(box.text());
                  Click(box, QMessageBox::Ok);
              }));
    return *this;
}

Answers& Answers::Question(const QString& text, bool yes, bool yesPreselected, forms::Icon icon) {
    m->Expect("question \"" + Utf8(text) + "\"", For<QMessageBox>([=](QMessageBox& box) {
                  EXPECT_EQ(Utf8(box.text()), Utf8(text));
                  CheckBox(box, icon, true);
                  const auto preselected = yesPreselected ? QMessageBox::Yes : QMessageBox::No;
                  EXPECT_EQ(box.defaultButton(), box.button(preselected)) << "default button";
                  Click(box, yes ? QMessageBox::Yes : QMessageBox::No);
              }));
    return *this;
}

Answers& Answers::File(const QString& path, std::function<void(QFileDialog&)> look) {
    m->Expect("file dialog for " + Utf8(path),
              For<QFileDialog>([path, look = std::move(look)](QFileDialog& dialog) {
                  if (look)
                      look(dialog);
                  TypeIntoFileDialog(dialog, path);
              }));
    return *this;
}

Answers& Answers::Modal(const QString& objectName, std::function<void(QWidget&)> act) {
    m->Expect("window " + Utf8(objectName), [objectName, act = std::move(act)](QWidget& window) {
        EXPECT_EQ(Utf8(window.objectName()), Utf8(objectName));
        if (window.objectName() == objectName)
            act(window);
        else
            CloseAnyhow(window);
    });
    return *this;
}

Answers& Answers::Menu(const QString& menuName, const QString& entryName) {
    m->Expect("menu " + Utf8(menuName),
              For<QMenu>([=](QMenu& menu) { ChooseFromMenu(menu, menuName, entryName); }));
    return *this;
}

bool Answers::Done() const {
    return m->expected.empty();
}

} // namespace test
