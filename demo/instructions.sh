# SPDX-License-Identifier: GPL-3.0-or-later
# shellcheck shell=bash
# The agents' instruction files of the made-up home. Sourced by make-home.

# write_instructions HOME CODE-FOLDER
write_instructions() {
    local home=$1 code=$2
    write_home_instructions "$home"
    write_anchorage_instructions "$code/anchorage"
    cat >"$code/ledgerline/AGENTS.md" <<'END'
# ledgerline

Plain-text bookkeeping. Amounts are integers of cents; a float in a pull request is a mistake.
`cargo test` and `cargo clippy` have to be quiet before a commit.
END
    printf 'ドキュメントは日本語、コードとコミットは英語で書いてください。\n' >"$code/koyomi-暦/CLAUDE.md"
}

write_home_instructions() {
    mkdir -p -- "$1/.claude" "$1/.codex"
    cat >"$1/.claude/CLAUDE.md" <<'END'
# For every project

- Say what you are about to change before you change it.
- A bug gets a failing test first.
- Short sentences, British spelling.
- Never push. I do that.
END
    cat >"$1/.codex/AGENTS.md" <<'END'
# For every project

The same rules as in ~/.claude/CLAUDE.md. Ask before you install anything.
END
}

write_anchorage_instructions() {
    mkdir -p -- "$1/.cursor/rules"
    cat >"$1/CLAUDE.md" <<'END'
# Anchorage

Tide tables and berth bookings for small harbours. TypeScript on the server, hardly any in the
browser.

## The rooms

| folder       | holds                                                        |
|--------------|--------------------------------------------------------------|
| `src`        | predictions, berths, opening times; nothing here knows HTTP  |
| `src/text`   | how heights, times and prices are written                    |
| `src/notify` | mails to skippers                                            |
| `data`       | the harmonic constants of each station, from the tide office |
| `i18n`       | the strings, one file a language                             |

## Rules

1. Heights are in metres above chart datum, and the unit is in the name: `depthMetres`.
2. Times are UTC until they are shown. The station's zone is applied once, in `src/text`.
3. A prediction is a pure function of station and time. No clock inside.
4. What a harbour master reads is plain: no "invalid input", but what is wrong and what to do.

## Before a commit

    npm test
    npm run lint

Tests that need the clock get one as an argument.
END
    cat >"$1/AGENTS.md" <<'END'
# Anchorage

Everything in CLAUDE.md holds for you too. Besides:

- Work in small commits, one thought each.
- `data/` is written by `npm run import`. Do not edit it by hand.
- When the tests of the predictions fail by a centimetre, the constants are out of date. Say so
  and leave the expected values alone.
END
    cat >"$1/.cursor/rules/strings.mdc" <<'END'
---
description: Texts that people read
globs: i18n/*.json
---

Every key exists in every language. Heights and times are placeholders, never part of the text.
END
    cat >"$1/.cursor/rules/tests.mdc" <<'END'
---
description: Tests
globs: "**/*.test.ts"
---

One behaviour each. The name says what holds, not what is called.
END
}
