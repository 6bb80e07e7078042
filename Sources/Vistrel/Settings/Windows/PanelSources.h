#pragma once

#include "VistrelPlatform/Keyboard.h"
#include "VistrelPlatform/System/ApplicationBundle.h"

#include <functional>
#include <memory>

class AppController;
class ProblemReportModel;

/// What the settings and setup windows are made from. References are borrowed and outlive the windows.
struct PanelSources {
    AppController& controller;
    /// The version and the maker as the installed program names them.
    ApplicationBundle bundle;
    /// A new, empty report for every time the form is shown.
    std::function<std::unique_ptr<ProblemReportModel>()> makeReportModel;
    /// What a key types with no modifier held, from the keyboard layout.
    std::function<QString(KeyCode)> unmodifiedText;

    QString version() const { return bundle.string(ApplicationBundle::shortVersionKey).value_or(QString()); }
};
