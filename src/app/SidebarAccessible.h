// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/// What assistive technology is told of the sidebar. Qt offers it neither to open the context menu
/// of a list nor to find an open one, so the sidebar does both for the selected project.
namespace SidebarAccessible {

/// Lets the menu be opened in every Sidebar.
void install();

} // namespace SidebarAccessible
