#pragma once

/// What screen readers learn about the editor's own controls.
namespace EditorAccessibility {

/// Registers roles, states and actions once; later calls do nothing.
void install();

} // namespace EditorAccessibility
