#pragma once

#include "platform/forms/ChildFrame.h"
#include "platform/forms/Form.h"
#include "platform/forms/NestedLoop.h"

#include <QEventLoop>
#include <QPushButton>

#include <vector>

class QKeyEvent;

namespace forms {

bool IsEnter(const QKeyEvent& key);

struct FieldRule {
    const QObject* field;
    std::function<void()> apply;
};
using FieldRules = std::vector<FieldRule>; ///< in the order of their making

/// What a form knows of its window from load to unload.
struct Form::State {
    QString tag;
    QPointer<ChildFrame> frame; ///< of a child window
    QPointer<QPushButton> defaultButton;
    QPointer<QPushButton> cancelButton;
    FieldRules leaving;
    FieldRules entering;
    /// The field that lost the focus to another window or to a menu; getting it back is no entering.
    QPointer<QWidget> resting;
    QEventLoop* modalLoop = nullptr; ///< of the modal show that is running
    bool unloading = false;
};

} // namespace forms
