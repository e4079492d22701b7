// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "support/PrivateHome.h"

#include <QProcess>
#include <QProcessEnvironment>

/// The program itself, started as its user starts it, in a private home and a window that no screen
/// shows. It ends with this object at the latest.
class RealProgram : public QProcess {
public:
    explicit RealProgram(const PrivateHome &home, const QProcessEnvironment &environment =
                                                      QProcessEnvironment::systemEnvironment());
    ~RealProgram() override;

    void setVariable(const QString &name, const QString &value);
    /// Combinations of keys, separated by ";", that are pressed in its window again and again.
    void pressKeys(const QString &combinations);
    /// The same once, as soon as it is possible; also "click Save", "await Save" and "type text",
    /// as in KeyPresser.cpp. One after the other. To be called when it runs.
    void perform(const QStringList &steps);
    /// Waits until it runs, or fails to.
    bool begin();

private:
    QProcessEnvironment m_environment;
};

/// Puts a library into a program and its children before every other.
void preload(QProcessEnvironment &environment, const QString &library);

/// Makes a project's folder and lists it as added by hand.
QString addProject(const PrivateHome &home);
