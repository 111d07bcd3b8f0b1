#pragma once

#include "platform/runtime/Failure.h"

#include <QString>

namespace forms {

enum class Icon { Critical, Question, Exclamation, Information };
enum class Buttons { Ok, YesNo };
enum class Answer { Ok, Yes, No };

/// Shows a message box over the active window and waits for the answer. What was written is made durable
/// first; if that fails, the failure is raised and no box is shown, so that no success is reported before the
/// data is on the disk. In a YesNo box Esc and the close button mean No.
Answer MsgBox(const QString& text, Icon icon, Buttons buttons = Buttons::Ok, Answer preselected = Answer::Ok);

/// Yes-or-no questions. `AskYes` has Yes preselected; `AskNo`, for what can lose data, No. True on Yes.
bool AskYes(const QString& text);
bool AskNo(const QString& text, Icon icon = Icon::Question);

/// The standard error box: head, CR LF, number and description, one OK button. Never throws; a commit that
/// fails on the way to the box for another reason is told in a second box with the same head.
void ShowErrorBox(const QString& head, const runtime::Failure& failure, Icon icon = Icon::Critical);

/// One step of a clean-up: its failure is told under the head of the routine that cleans up, and does not
/// keep the next steps from being taken.
template <class Step>
void Attempt(const QString& head, Step step) {
    try {
        step();
    } catch (const runtime::Failure& failure) {
        ShowErrorBox(head, failure);
    }
}

/// The text of the standard error box.
QString ErrorText(const QString& head, const runtime::Failure& failure);

/// The box for a failure that no routine handled: the same box without a head.
void ShowEscapedFailure(const runtime::Failure& failure);

} // namespace forms
