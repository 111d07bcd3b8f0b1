#pragma once

#include <QApplication>

class QKeyEvent;

namespace runtime {
class Failure;
}

namespace forms {

class Form;

/// The application object: Russian locale and Russian texts of the toolkit, and the event dispatcher that
/// shows failures which no handler took and tells the engine when control returns to the event loop. Its end
/// takes what windows are left off the screen without their unload handlers.
class Application : public QApplication {
    Q_OBJECT

public:
    Application(int& argc, char** argv);
    ~Application() override;

    /// An exception that is no Failure passes through, also out of the loops of modal windows and boxes.
    bool notify(QObject* receiver, QEvent* event) override;

protected:
    bool event(QEvent* event) override;

private:
    static bool PressesButton(const QObject& receiver, QKeyEvent& key, Form& form);
    bool Deliver(QObject* receiver, QEvent* event);
    void LoadToolkitTexts();
    void CommitWhenIdle();
    void CommitAtEnd();
    void TellLater(const runtime::Failure& failure);

    bool m_telling = false;
};

} // namespace forms
