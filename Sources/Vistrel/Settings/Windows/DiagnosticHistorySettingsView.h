#pragma once

#include "Settings/Windows/DiagnosticHistoryModel.h"

#include <QWidget>

/// The "Diagnostics" section of the Appearance page, with a model of its own.
class DiagnosticHistorySettingsView : public QWidget {
    Q_OBJECT
public:
    DiagnosticHistorySettingsView(LocalDiagnostics& journal, UserDefaults& defaults,
                                  QWidget* parent = nullptr);

private:
    DiagnosticHistoryModel model;
};
