#pragma once

#include "platform/runtime/Process.h"
#include "shell/General.h"
#include "shell/frmMain.h"
#include "tests/support/WindowTest.h"

#include <QAction>
#include <QMainWindow>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>
