#pragma once

namespace forms {

/// Tells assistive tools of grids and calendars what their users see: hidden columns are no columns, and a
/// day that is set off says why.
void InstallTableAccess();

} // namespace forms
