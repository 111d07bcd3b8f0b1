#pragma once

#include <QApplication>

#include <functional>

namespace runtime {
class Failure;
}

namespace forms {

/// What a program hands in to its windows.
struct Program {
    QString title; ///< of every message box
    QString texts; ///< folder of the toolkit's translations, seen from that of the program
    /// Makes durable what was written. Called before every message box, which a failure keeps from showing,
    /// whenever the program is idle, and at its end.
    std::function<void()> writeToDisk;
};

/// The application object: Russian locale and Russian texts of the toolkit, and the event dispatcher that
/// shows failures which no handler took and has what was written made durable when control returns to the
/// event loop. Its end
/// takes what windows are left off the screen without their unload handlers.
class Application : public QApplication {
    Q_OBJECT

public:
    Application(int& argc, char** argv, Program program);
    ~Application() override;

    static const Program& Running();

    /// The desktop logs out. What was written is made durable; a failure is told if `mayTell` allows it.
    /// Until the user goes on working no box is shown: a question is answered with No.
    void EndSession(const std::function<bool()>& mayTell);
    static bool SessionEnds();

    bool notify(QObject* receiver, QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

    /// Puts the program's form of the toolkit's own style in place of that style, also where a settings
    /// program has put a proxy of its own around it; other styles stay. True if the theme's colours stand as
    /// no settings program has chosen them.
    bool ChooseStyle();
    /// Follows the desktop's preference where the theme does not: the toolkit's own style in dark colours, or
    /// in those of the theme again.
    void PreferDark(bool dark);

protected:
    bool event(QEvent* event) override;

private:
    void LoadToolkitTexts();
    void WriteWhenIdle();
    void WriteAtEnd();
    void TellLater(const runtime::Failure& failure);

    const Program m_program;
    bool m_telling = false;
    bool m_sessionEnds = false;
    bool m_darkened = false; ///< by PreferDark
    QString m_systemStyle;   ///< style of Windows, if that is used
};

} // namespace forms
