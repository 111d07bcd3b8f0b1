#pragma once

namespace forms {

/// Tells assistive tools that the titles on a menu bar are menus, not commands.
void InstallMenuAccess();

} // namespace forms
