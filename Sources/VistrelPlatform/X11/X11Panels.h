#pragma once

#include <optional>

/// The desktop's panels, where they are windows of the type "dock". Main thread.
namespace X11Panels {

/// The brightness that most of their surface shows at the moment, 0 to 255; absent where there are none.
std::optional<int> brightness();

} // namespace X11Panels
