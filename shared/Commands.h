#pragma once

#include "platform/runtime/Failure.h"

#include <QString>

/// What the commands of the frame ask of the active child. A child has some of them; any other is failure
/// 438.
class Commands {
public:
    virtual ~Commands() = default;

    virtual void DoNotFillGrid(bool /*bNeedFill*/) { Missing(); }
    virtual void FillGrid(const QString& /*strSQL*/) { Missing(); }
    virtual void ShowFilter() { Missing(); }
    virtual void EditRecord(int /*nAction*/) { Missing(); }
    virtual void ExtractToAnotherDB() { Missing(); }
    virtual void ExtractToCSV() { Missing(); }
    virtual void EditEvent(int /*nType*/) { Missing(); }
    virtual void DeleteEvent() { Missing(); }

private:
    [[noreturn]] static void Missing() { runtime::Raise(runtime::NoSuchMember); }
};
