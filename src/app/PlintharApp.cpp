// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/PlintharApp.h"

#include "app/ContentView.h"
#include "model/Background.h"
#include "ui/Icons.h"

#include <QGuiApplication>

PlintharApp::PlintharApp() : m_store(std::make_unique<Store>())
{
    QGuiApplication::setApplicationName(QStringLiteral("plinthar"));
    QGuiApplication::setDesktopFileName(QStringLiteral("io.github.plinthar.Plinthar"));
    QGuiApplication::setWindowIcon(applicationIcon());
    m_window = std::make_unique<ContentView>(*m_store);
}

PlintharApp::~PlintharApp()
{
    m_window.reset();
    m_store.reset();
    // With the window gone nobody waits for it. A tool that does not end when it is told to is
    // killed a second later.
    Background::finish(std::chrono::milliseconds(1500));
    Background::finishSaving();
}

void PlintharApp::show()
{
    m_window->show();
}
