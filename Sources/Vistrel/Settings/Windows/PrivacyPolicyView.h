#pragma once

#include <QDialog>
#include <QStringList>

#include <vector>

/// The privacy policy as a sheet over the setup window.
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

    explicit PrivacyPolicyView(const Publisher& publisher, QWidget* parent = nullptr);

    static std::vector<Section> sections(const Publisher& publisher);
};
