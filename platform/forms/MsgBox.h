#pragma once

#include "platform/runtime/Failure.h"

#include <QString>

#include <type_traits>

namespace forms {

enum class Icon { Critical, Question, Exclamation, Information };

/// Shows a message box over the active window and waits until it is closed. What was written is made durable
/// first; if that fails, the failure is raised and no box is shown, so that no success is reported before the
/// data is on the disk.
void MsgBox(const QString& text, Icon icon);

/// Yes-or-no questions, in such boxes. `AskYes` has Yes preselected; `AskNo`, for what can lose data, No.
/// True on Yes; Esc and the close button mean No.
bool AskYes(const QString& text);
bool AskNo(const QString& text, Icon icon = Icon::Question);

/// The standard error box: head, CR LF, number and description, one OK button; without a head for a failure
/// that no routine has handled. Never throws; a commit that
/// fails on the way to the box for another reason is told in a second box with the same head.
void ShowErrorBox(const QString& head, const runtime::Failure& failure, Icon icon = Icon::Critical);

/// Takes a step of a routine with that head and shows its failure. False behind a failure, else what the step
/// answers, if it answers at all.
template <class Step>
bool Attempt(const QString& head, Step step, Icon icon = Icon::Critical) {
    try {
        if constexpr (std::is_same_v<std::invoke_result_t<Step>, bool>)
            return step();
        else
            return step(), true;
    } catch (const runtime::Failure& failure) {
        ShowErrorBox(head, failure, icon);
        return false;
    }
}

/// The text of the standard error box.
QString ErrorText(const QString& head, const runtime::Failure& failure);

} // namespace forms
