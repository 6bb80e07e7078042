#include "App/LoginItemAlert.h"

#include <QMessageBox>
#include <QPushButton>

bool LoginItemAlert::ask(const QString& description) {
    QMessageBox box(QMessageBox::Warning, QStringLiteral("Vistrel"),
                    QStringLiteral("Couldn't change Launch at Login"));
    box.setObjectName(QStringLiteral("loginItemAlert"));
    box.setInformativeText(description);
    const QPushButton* open = box.addButton(QStringLiteral("Open Login Items"), QMessageBox::AcceptRole);
    box.addButton(QStringLiteral("Cancel"), QMessageBox::RejectRole);
    box.show();
    box.raise();
    box.activateWindow();
    box.exec();
    return box.clickedButton() == open;
}
