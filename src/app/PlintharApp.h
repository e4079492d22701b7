// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/Store.h"

#include <memory>

class ContentView;

/// The application: the one store and the one window. Needs a QApplication to be there.
class PlintharApp {
public:
    PlintharApp();
    ~PlintharApp();

    PlintharApp(const PlintharApp &) = delete;
    PlintharApp &operator=(const PlintharApp &) = delete;

    /// Opens the window.
    void show();
    ContentView &window() { return *m_window; }

private:
    std::unique_ptr<Store> m_store;
    std::unique_ptr<ContentView> m_window;
};
