#pragma once

#include "Settings/Windows/PageView.h"

#include <functional>
#include <memory>

class ProblemReportModel;

/// The Support page: a form for one problem report, then thanks with the report's number. Owns its model.
class ProblemReportSettingsView : public PageView {
    Q_OBJECT
public:
    ProblemReportSettingsView(std::unique_ptr<ProblemReportModel> emptyReport, std::function<void()> done,
                              QWidget* parent = nullptr);
    ~ProblemReportSettingsView() override;

private:
    QWidget* makeForm();
    QWidget* makeThanks();
    void showThanks();

    std::unique_ptr<ProblemReportModel> model;
    std::function<void()> onDone;
    QWidget* form = nullptr;
};
