#pragma once

#include "App/Notice.h"

#include <QPointer>

class QMessageBox;

/// Shows one notice at a time. It blocks nothing: a capture may come and go while it waits to be read.
/// Main thread.
class NoticeWindow {
public:
    NoticeWindow() = default;
    ~NoticeWindow();
    NoticeWindow(const NoticeWindow&) = delete;
    NoticeWindow& operator=(const NoticeWindow&) = delete;

    /// Takes the place of the notice before.
    void tell(const Notice& notice);

private:
    QPointer<QMessageBox> box;
};
