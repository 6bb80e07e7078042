#include "App/NoticeWindow.h"

#include <QMessageBox>
#include <QPushButton>

NoticeWindow::~NoticeWindow() {
    delete box;
}

void NoticeWindow::tell(const Notice& notice) {
    // The one before may be telling at this moment that its button was pressed.
    if (box)
        box->close();
    box = new QMessageBox(QMessageBox::Information, QStringLiteral("Vistrel"), notice.text);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setObjectName(QStringLiteral("notice"));
    box->setAccessibleName(notice.text);
    box->setTextFormat(Qt::PlainText);
    box->setInformativeText(notice.details);
    box->setModal(false);
    if (notice.choice.isEmpty()) {
        box->addButton(QMessageBox::Ok);
    } else {
        const QPushButton* choice = box->addButton(notice.choice, QMessageBox::AcceptRole);
        QObject::connect(choice, &QPushButton::clicked, box, notice.onChoice);
        box->addButton(QStringLiteral("Cancel"), QMessageBox::RejectRole);
    }
    box->show();
    box->raise();
    box->activateWindow();
}
