#include "tests/support/Answers.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include <algorithm>
#include <map>

namespace test {

namespace {

std::string Describe(const QWidget& window) {
    if (const auto* box = qobject_cast<const QMessageBox*>(&window))
        return "message box \"" + box->text().toStdString() + "\"";
    return "window " + window.objectName().toStdString() + " \"" + window.windowTitle().toStdString() + '"';
}

void Click(QMessageBox& box, QMessageBox::StandardButton which) {
    if (QAbstractButton* button = box.button(which))
        QTest::mouseClick(button, Qt::LeftButton);
}

/// Takes a window that nobody can answer off the screen.
void CloseAnyhow(QWidget& window) {
    if (auto* box = qobject_cast<QMessageBox*>(&window))
        Click(*box, box->button(QMessageBox::No) ? QMessageBox::No : QMessageBox::Ok);
    else
        window.close();
    if (window.isVisible())
        window.hide();
}

/// What a box has to be, and how it is answered.
struct Message {
    QString text;
    bool whole; ///< or the beginning alone
    forms::Icon icon;
    bool isQuestion = false;
    bool yes = false;
    bool yesPreselected = false;
    std::function<void(const QString&)> look = {};

    void Answer(QMessageBox& box) const {
        EXPECT_EQ(whole ? box.text() : box.text().left(text.size()), text);
        EXPECT_EQ(box.windowTitle(), QStringLiteral("Zavelik"));
        static const std::map<forms::Icon, QMessageBox::Icon> icons{
            {forms::Icon::Critical, QMessageBox::Critical},
            {forms::Icon::Question, QMessageBox::Question},
            {forms::Icon::Exclamation, QMessageBox::Warning},
            {forms::Icon::Information, QMessageBox::Information},
        };
        EXPECT_EQ(box.icon(), icons.at(icon));
        QStringList buttons;
        for (QAbstractButton* button : box.buttons())
            buttons += button->text().remove(u'&') +
                       (isQuestion && button == box.defaultButton() ? QStringLiteral("!") : QString());
        buttons.sort();
        EXPECT_EQ(buttons.join(u' '), !isQuestion      ? QStringLiteral("OK")
                                      : yesPreselected ? QStringLiteral("Да! Нет")
                                                       : QStringLiteral("Да Нет!"));
        if (look)
            look(box.text());
        Click(box, !isQuestion ? QMessageBox::Ok : yes ? QMessageBox::Yes : QMessageBox::No);
    }
};

/// The act of an expectation that wants a window of one class; any other window fails the test and is closed.
template <class Window>
std::function<void(QWidget&)> For(std::function<void(Window&)> act) {
    return [act = std::move(act)](QWidget& widget) {
        if (auto* window = qobject_cast<Window*>(&widget))
            return act(*window);
        ADD_FAILURE() << "another window came: " << Describe(widget);
        CloseAnyhow(widget);
    };
}

std::function<void(QWidget&)> For(const Message& message) {
    return For<QMessageBox>([message](QMessageBox& box) { message.Answer(box); });
}

void ChooseFromMenu(QMenu& menu, const QString& menuName, const QString& entryName) {
    EXPECT_EQ(menu.objectName(), menuName);
    auto* entry = menu.findChild<QAction*>(entryName);
    if (entryName.isEmpty()) {
        QTest::keyClick(&menu, Qt::Key_Escape);
    } else if (entry && entry->isEnabled() && menu.actions().contains(entry)) {
        QTest::mouseClick(&menu, Qt::LeftButton, Qt::NoModifier, menu.actionGeometry(entry).center());
    } else {
        ADD_FAILURE() << "cannot choose " << entryName.toStdString();
        menu.close();
    }
}

} // namespace

QString ErrorStart(const QString& head, int number) {
    return head + QStringLiteral("\r\nпроизошла ошибка №%1 ").arg(number);
}

void TypeIntoFileDialog(QFileDialog& dialog, const QString& path) {
    auto* buttons = dialog.findChild<QDialogButtonBox*>(QStringLiteral("buttonBox"));
    const bool saves = dialog.acceptMode() == QFileDialog::AcceptSave;
    const auto accept = saves ? QDialogButtonBox::Save : QDialogButtonBox::Open;
    if (!path.isEmpty())
        dialog.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))->setText(path);
    QTest::mouseClick(buttons->button(path.isEmpty() ? QDialogButtonBox::Cancel : accept), Qt::LeftButton);
}

Answers::Answers() {
    PollAgain();
}

Answers::~Answers() {
    for (const Expectation& missing : m_expected)
        ADD_FAILURE() << "never came: " << missing.what;
}

Answers& Answers::Expect(std::string what, std::function<void(QWidget&)> act) {
    m_expected.push_back({std::move(what), std::move(act)});
    return *this;
}

// A fresh timer each time: one whose slot is running does not fire in a loop inside it.
void Answers::PollAgain() {
    QTimer::singleShot(1, this, [this] { Poll(); });
}

void Answers::Poll() {
    PollAgain();
    QWidget* window = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    if (!window)
        window = QApplication::activeModalWidget();
    if (window && window->isVisible())
        Deal(*window);
}

// A click that raises a further box returns only after that box.
void Answers::Deal(QWidget& window) {
    if (std::find(m_acting.begin(), m_acting.end(), &window) != m_acting.end())
        return;
    m_acting.emplace_back(&window);
    if (m_expected.empty()) {
        Surprise(window);
    } else {
        const Expectation next = m_expected.front();
        m_expected.pop_front();
        SCOPED_TRACE(next.what);
        next.act(window);
    }
    m_acting.pop_back();
}

void Answers::Surprise(QWidget& window) {
    ADD_FAILURE() << "nobody expected " << Describe(window);
    CloseAnyhow(window);
}

Answers& Answers::Box(const QString& text, forms::Icon icon) {
    return Expect("box \"" + text.toStdString() + "\"", For(Message{text, true, icon}));
}

Answers& Answers::BoxStarting(const QString& start, forms::Icon icon,
                              std::function<void(const QString&)> look) {
    return Expect("box starting \"" + start.toStdString() + "\"",
                  For(Message{.text = start, .whole = false, .icon = icon, .look = std::move(look)}));
}

Answers& Answers::Question(const QString& text, bool yes, bool yesPreselected, forms::Icon icon) {
    return Expect("question \"" + text.toStdString() + "\"",
                  For(Message{text, true, icon, true, yes, yesPreselected}));
}

Answers& Answers::File(const QString& path, std::function<void(QFileDialog&)> look) {
    return Expect("file dialog for " + path.toStdString(),
                  For<QFileDialog>([path, look = std::move(look)](QFileDialog& dialog) {
                      if (look)
                          look(dialog);
                      TypeIntoFileDialog(dialog, path);
                  }));
}

Answers& Answers::Modal(const QString& objectName, std::function<void(QWidget&)> act) {
    return Expect("window " + objectName.toStdString(), [objectName, act = std::move(act)](QWidget& window) {
        EXPECT_EQ(window.objectName(), objectName);
        if (window.objectName() == objectName)
            act(window);
        else
            CloseAnyhow(window);
    });
}

Answers& Answers::Menu(const QString& menuName, const QString& entryName) {
    return Expect("menu " + menuName.toStdString(),
                  For<QMenu>([=](QMenu& menu) { ChooseFromMenu(menu, menuName, entryName); }));
}

QStringList Boxes::Failures(const QStringList& texts) {
    return texts.filter(QStringLiteral("произошла ошибка №"));
}

void Boxes::Surprise(QWidget& window) {
    if (auto* box = qobject_cast<QMessageBox*>(&window)) {
        m_texts += box->text();
        Click(*box, box->button(QMessageBox::Yes) ? QMessageBox::Yes : QMessageBox::Ok);
    } else if (m_handler) {
        m_handler(window);
    } else {
        Answers::Surprise(window);
    }
}

} // namespace test
