#pragma once

#include "tests/support/Expect.h"

#include <QObject>
#include <QPointer>
#include <QStringList>

#include <functional>
#include <vector>

class QMessageBox;

namespace test {

/// Reads and closes whatever boxes come, for tests that cannot know which: Yes or OK is pressed. Any other
/// modal window is given to the handler.
class Boxes : public QObject {
public:
    explicit Boxes(std::function<void(QWidget&)> handler = {});

    /// The texts so far, in order; they are forgotten.
    QStringList Take();
    /// Those of them that tell a failure.
    static QStringList Failures(const QStringList& texts);

private:
    void Poll();
    void PollAgain();
    bool IsHandled(const QWidget* window) const;
    void Read(QMessageBox& box);

    std::function<void(QWidget&)> m_handler;
    QStringList m_texts;
    std::vector<QPointer<QWidget>> m_handled; ///< whose handler is running
};

} // namespace test
