#pragma once

#include "Settings/Windows/PanelSources.h"

#include <QDialog>
#include <QStringList>

#include <vector>

/// The privacy policy as a sheet over the window that it was called from.
class PrivacyPolicyView : public QDialog {
    Q_OBJECT
public:
    struct Section {
        QString heading;
        QStringList paragraphs;
    };
    /// Who publishes the program and serves its updates; empty names fall back to general words.
    struct Publisher {
        QString updateHost;
        QString maker;
    };

    /// Shows the running program's policy; the sheet goes away with `over`.
    static void open(const PanelSources& sources, QWidget& over);

    explicit PrivacyPolicyView(const Publisher& publisher, QWidget* parent = nullptr);

    static std::vector<Section> sections(const Publisher& publisher);
};
