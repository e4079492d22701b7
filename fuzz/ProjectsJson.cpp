// SPDX-License-Identifier: GPL-3.0-or-later
// Folders written to projects.json and read again are the same folders; so is a project. What is
// written is strict JSON in which no slash stands alone.

#include "Choices.h"
#include "Property.h"
#include "Target.h"
#include "model/PriceStore.h"
#include "model/Project.h"
#include "support/Describe.h"
#include "support/StrictJson.h"

namespace {

void checkRoundTrip(const QStringList &paths)
{
    const QByteArray json = PriceStore::encodeAdded(paths);
    holds(isStrictJsonObject("{\"a\":" + json + '}'), "what is written is JSON");
    holds(json.count('/') == json.count("\\/"), "every slash has its backslash");
    const auto again = PriceStore::decodeAdded(json);
    same(again ? describe(*again) : QString(), describe(paths), "the folders come back");
}

} // namespace

namespace Target {

void check(const QByteArray &input)
{
    if (const auto paths = PriceStore::decodeAdded(input))
        checkRoundTrip(*paths);
    Choices choices(input);
    QStringList paths;
    while (!choices.atEnd())
        paths.append(choices.text());
    checkRoundTrip(paths);

    Choices fields(input);
    Project project{fields.text(), std::nullopt, fields.below(2) == 1};
    if (fields.below(2))
        project.claudeDir = fields.text();
    same(describe(projectFromJson(toJson(project))), describe(std::optional(project)),
         "a project comes back");
}

QByteArrayList seeds()
{
    return {"[]",
            R"(["\/home\/x","\/home\/é"])",
            R"(["/a",1])",
            R"({"a":[]})",
            "null",
            R"(["\ud83d\ude00 \u0000\n\"\\"])",
            R"(["\ud83d"])",
            "\5/home\3/\xc3\xa9",
            "\4/a\\/\1\1\4/b\"\n"};
}

QByteArrayList words()
{
    return {"[\"", "\",\"", "\"]", "\\/", "\\ud83d", "\\ude00", "\\u0000", "\xf0\x9f\x98\x80",
            "null"};
}

} // namespace Target
