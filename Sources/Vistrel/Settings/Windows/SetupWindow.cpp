#include "Settings/Windows/SetupWindow.h"

#include "App/AppController.h"

SetupWindow::SetupWindow(const PanelSources& given)
    : PanelWindow(QStringLiteral("Vistrel Setup"), given.controller), sources(given) {
    setObjectName(QStringLiteral("setupWindow"));
    connect(this, &QDialog::finished, &sources.controller, &AppController::setupWindowWillClose);
}

void SetupWindow::present() {
    if (!isVisible()) {
        view = new OnboardingView(sources, this);
        setPanel(view);
    }
    bringToFront();
}
