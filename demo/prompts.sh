# SPDX-License-Identifier: GPL-3.0-or-later
# shellcheck shell=bash
# shellcheck disable=SC2016,SC2034 # plain text, which sessions.sh reads
# What the made-up programmer asked for, the newest first. Each text stands in a JSON string as it
# is, so a line ends with \n. Sourced by sessions.sh.

anchorage_prompts=(
    'The tide table is an hour late for stations east of the meridian. Find out where the time zone is applied twice and write the test that shows it before you fix anything.'
    'Split berths.ts: finding a free berth, holding it and the price are three things. Keep the public functions as they are.'
    'Why does the booking page ask for the harbour list on every key press? It should ask once and filter what it has.'
    'Add an alarm by mail when the predicted low water at a booked berth is below the keel plus 30 cm.'
    'Here is the failing job:\n\n    expected 3.42 to be 3.41\n    at tides.test.ts:88\n\nIs it the rounding or are the constants of the station wrong?'
    'Translate the new strings into Japanese, with the words that the coast guard uses for tides.'
    'Write the migration that gives every berth a depth at chart datum. Old rows get the depth of their pier.'
    'Review my branch winter-hours. I am most worried about the opening times around New Year.'
    'The almanac import is not used since spring. Make sure of that, then take it out with everything that only it needs.'
    'Draw the tide curve as SVG on the server, so that the page works without scripts. Same look as now.'
    'A harbour master says that two boats were given berth 14 last Saturday. Read the log in /var/log/anchorage and tell me how that can happen.'
    'Make the holds expire in the database and not in the process, with a test that advances the clock.'
    'Bring the dependencies up to date, one commit each, and say what each update changes for us.'
    'Move text formatting into a folder of its own. No change of behaviour.'
    'Explain how the harmonic constants turn into a height, as a comment that a new colleague understands.'
    'The page for small screens cuts off the station names. Let them wrap.'
    'Speed up the year view: it computes the same constituents for each day again. Measure before and after.'
    'Add a health check that knows when the newest prediction is older than a day.'
    'Which of our endpoints do not check that the berth belongs to the harbour in the address?'
    'Write end-to-end tests for booking: free berth, full harbour, boat too long, hold that ran out.'
    'Rename Mooring to Berth everywhere, the database included.'
    'Set up the linter with the rules we agreed on and fix what it finds in src, not in tests.'
    'Print the tide table on one A4 page, with the moon phases.'
    'Our logs are full of timeouts from the weather service. Cache its answers for ten minutes and back off when it fails.'
)

field_notes_prompts=(
    'Make a table of contents from the headings, three levels deep.'
    'Check every link in the notes and list the ones that are dead.'
    'Turn the June recordings into dated entries, one file a day, and keep my wording.'
    'Build a small static site from this folder, with a search that works offline.'
    'Find the places where I name a plant by its common name only and add the Latin one.'
)

koyomi_prompts=(
    '祝日の一覧を2030年まで計算して、振替休日のテストも追加してください。'
    '旧暦の月の名前が閏月のときに一つずれています。原因を調べてください。'
    'README を英語と日本語の両方で書いてください。'
    'Make the week view start on the day that the locale says, and show the six-day cycle below each date.'
    '二十四節気の日付を国立天文台の表と比べるテストを書いてください。'
    'Export a year as an iCalendar file, with the holidays as all-day events.'
    'カレンダーの色をダークモードでも読みやすくしてください。'
)

ledgerline_prompts=(
    'Implement `balance --monthly` as the help text already promises. Amounts stay integers of cents throughout.'
    'The parser accepts a posting without an account when the line ends in a comment. It must not.'
    'Property-test the parser: printing and reading again gives the same journal.'
    'Add currencies to prices, but do not convert anything unless the user names a rate.'
    'Why is reading my 40 MB journal so slow? Profile it and show me the three places that matter.'
    'Write the completion scripts for bash, zsh and fish from one description of the options.'
    'Errors should point at the line and the column, with the line printed below. Look at how rustc does it.'
    'Replace the hand-made date arithmetic by the time crate. Leap days have their own tests.'
    'Bank imports: match transactions by amount and date within three days, and ask when more than one fits.'
    'Release 0.9: changelog, version numbers, tag. Do not push.'
    'Describe the file format in one page with an example for every kind of line.'
    'Colours only when the output is a terminal, and never when NO_COLOR is set.'
    'Find dead code and show it to me before you delete it.'
    'Set up continuous builds for Linux and macOS.'
)

night_sky_prompts=(
    'The moon is drawn at the wrong phase south of the equator. Mirror it there.'
    'Load the star catalogue in the background and draw what is already there.'
    'Port the shaders to GLSL 3.30 and remove the fixed pipeline.'
    'Add a red night mode that also covers the menus.'
    'Clicking near the pole selects a star on the other side. I think the distance is taken in degrees.'
    'Where do the 300 ms at start go? Give me a flame graph.'
    'Let the arrow keys turn the view by one field of view, with shift by a tenth.'
    'Write a unit test for precession with the values in the Astronomical Almanac.'
    'Save the last view and restore it, unless a place is given on the command line.'
)

orchard_api_prompts=(
    'Return 409 and not 500 when two harvests are saved for the same tree and day.'
    'Paginate GET /trees by key, not by offset, and keep the old parameter working with a warning header.'
    'Write down the API as OpenAPI 3.1 and check in a test that it is true.'
    'Our tests take four minutes. Share the database between the test modules without sharing rows.'
    'Move the settings out of the code into the environment, with a clear error for each one that is missing.'
    'Type hints for the whole package, strict mode. No casts without a reason.'
    'Weather data come in Fahrenheit from one station. Convert at the border and nowhere else.'
    'Add a command that makes a season of believable test data.'
    'What happens when the message broker is away during a harvest? Try it and describe it.'
    'Delete accounts for real after 30 days, with everything that belongs to them.'
)

follow_ups=(
    'Good. Now the same for the other two.'
    'Run the tests.'
    'Show me the diff before you go on.'
    'That is more than I asked for. Take the second part out again.'
    'Yes, do it.'
    'Why not with a map?'
    'Commit this with a message that says why.'
    'There is a warning left in the build.'
    'Write the test first, please.'
    'Undo that and try the simpler way.'
    'What else could break?'
    'The name is misleading. What about firstFree?'
    'Looks right. Add a line to the changelog.'
    'It still fails on my machine, with the same message.'
    'Go on.'
)
