#include "App/LoginItemAlert.h"

#include <QMessageBox>
#include <QPushButton>

LoginItemAlert::LoginItemAlert() = default;

LoginItemAlert::~LoginItemAlert() = default;

void LoginItemAlert::ask(const QString& description, std::function<void()> openLoginItems) {
    box = std::make_unique<QMessageBox>(QMessageBox::Warning, QStringLiteral("Vistrel"),
                                        QStringLiteral("Couldn't change Launch at Login"));
    box->setObjectName(QStringLiteral("loginItemAlert"));
    box->setInformativeText(description);
    box->setModal(false);
    const QPushButton* open = box->addButton(QStringLiteral("Open Login Items"), QMessageBox::AcceptRole);
    box->addButton(QStringLiteral("Cancel"), QMessageBox::RejectRole);
    QObject::connect(open, &QPushButton::clicked, box.get(), std::move(openLoginItems));
    box->show();
    box->raise();
    box->activateWindow();
}
