// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "support/AgentDouble.h"
#include "support/PrivateHome.h"

#include <memory>

/// A home with a project that has something for every tab: sessions of three weeks, changes that
/// are staged and that are not, instruction files, and an agent that runs.
class FilledHome {
public:
    FilledHome();

    const PrivateHome &home() const { return m_home; }

private:
    PrivateHome m_home;
    std::unique_ptr<AgentDouble> m_agent;
};
