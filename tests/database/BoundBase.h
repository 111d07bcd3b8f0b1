#pragma once

#include "database/General.h"
#include "tests/support/BoundBook.h"
