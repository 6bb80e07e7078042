#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QString>

/// The build, installed into a folder of the test's own.
class InstalledTree {
public:
    /// `cmake --install`; what goes wrong fails the test.
    explicit InstalledTree(const QString& folder);

    QString program() const { return prefix + QStringLiteral("/bin/vistrel"); }
    QJsonObject information() const;
    /// Puts `values` in the place of what the build said about itself.
    void inform(const QJsonObject& values) const;
    /// A copy at `folder`.
    InstalledTree copied(const QString& folder) const;

    const QString prefix;

    /// Runs a program to its end and returns what it printed; failing fails the test.
    static QByteArray run(const QString& program, const QStringList& arguments);

private:
    struct Existing {
        QString folder;
    };
    explicit InstalledTree(Existing tree) : prefix(std::move(tree.folder)) {}
};
