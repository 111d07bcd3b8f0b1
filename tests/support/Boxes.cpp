#include "tests/support/Boxes.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QMessageBox>
#include <QTest>
#include <QTimer>

#include <algorithm>

namespace test {

Boxes::Boxes(std::function<void(QWidget&)> handler)
    : m_handler(std::move(handler)) {
    PollAgain();
}

QStringList Boxes::Take() {
    return std::exchange(m_texts, {});
}

QStringList Boxes::Failures(const QStringList& texts) {
    return texts.filter(QStringLiteral("произошла ошибка №"));
}

// A fresh timer each time: one whose slot is running does not fire in a loop inside it.
void Boxes::PollAgain() {
    QTimer::singleShot(1, this, [this] { Poll(); });
}

void Boxes::Poll() {
    PollAgain();
    QWidget* window = QApplication::activeModalWidget();
    if (!window || !window->isVisible() || IsHandled(window))
        return;
    if (auto* box = qobject_cast<QMessageBox*>(window)) {
        Read(*box);
    } else if (m_handler) {
        m_handled.emplace_back(window);
        m_handler(*window);
        m_handled.pop_back();
    } else {
        ADD_FAILURE() << "nobody expected " << window->objectName().toStdString();
        window->close();
    }
}

bool Boxes::IsHandled(const QWidget* window) const {
    return std::any_of(m_handled.begin(), m_handled.end(),
                       [window](const QPointer<QWidget>& handled) { return handled == window; });
}

void Boxes::Read(QMessageBox& box) {
    m_texts += box.text();
    const auto yes = box.standardButtons() & QMessageBox::Yes ? QMessageBox::Yes : QMessageBox::Ok;
    QTest::mouseClick(box.button(yes), Qt::LeftButton);
}

} // namespace test
