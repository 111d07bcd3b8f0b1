#include "AboutTest.moc"

#include "Product.h"
#include "platform/engine/EngineError.h"
#include "shell/frmAbout.h"
#include "tests/support/WindowTest.h"
