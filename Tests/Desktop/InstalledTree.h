#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QString>

/// The build, installed into a folder of the test's own. What goes wrong here fails the test.
class InstalledTree {
public:
    explicit InstalledTree(const QString& folder);
    /// A copy of another.
    InstalledTree(const InstalledTree& original, const QString& folder);

    QString program() const { return prefix + QStringLiteral("/bin/vistrel"); }
    QJsonObject information() const;
    /// Puts `values` in the place of what the build said about itself.
    void inform(const QJsonObject& values) const;

    /// Runs a program to its end and returns what it printed.
    static QByteArray run(const QString& program, const QStringList& arguments);

    const QString prefix;
};
