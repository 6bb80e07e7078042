#pragma once

#include <QString>

#include <optional>

/// How pictures are taken. `automatic` is `filtered`; `direct` has to be asked for.
enum class CaptureMethod { automatic, filtered, direct };

/// The method by its exact name ("automatic", "filtered", "direct").
std::optional<CaptureMethod> captureMethodNamed(const QString& name);
