// Every row of data/cases/commands.tsv is one run of the command line and one
// test of its own, named by the row's line, in a fresh folder holding copies
// of data/images and data/e2e (those the row names): status, standard output
// and standard error byte for byte. A failing run must leave every file in
// the folder as it was; an image a run writes must be RGB, and when
// data/cases/expected holds an image of its name, have exactly its pixels.
// PLAKARD_FONT names the built Inter for every row, except rows that start
// like env(1) ("env -u NAME NAME=value ... compose ..."): those run the built
// executable in that environment, so the face beside it is the default.
#include <gtest/gtest.h>

#include <cstdlib>

#include "raster/Canvas.hpp"
#include "support/Support.hpp"

namespace plakard::test {
namespace {

struct Row {
    int line;
    std::string text;
};
void PrintTo(const Row& row, std::ostream* out) { *out << row.text; }

std::vector<Row> tableRows() {
    std::vector<Row> rows;
    std::ifstream table(dataPath("cases/commands.tsv"));
    int line = 0;
    for (std::string text; std::getline(table, text);) {
        ++line;
        if (!text.empty() && text[0] != '#') rows.push_back({line, text});
    }
    return rows;
}

std::string unescaped(std::string field, const fs::path& folder) {
    if (field == "''") return "";
    const std::pair<std::string, std::string> marks[] = {
        {"\\n", "\n"}, {"\\t", "\t"}, {"{dir}", folder.string()}, {"{usage}", readBytes(dataPath("e2e/usage.txt"))}};
    for (const auto& [mark, text] : marks)
        for (std::size_t at = 0; (at = field.find(mark, at)) != std::string::npos; at += text.size())
            field.replace(at, mark.size(), text);
    return field;
}

Outcome runRow(std::vector<std::string> words, const fs::path& folder) {
    if (words.empty() || words[0] != "env") return runInProcess(words, folder);
    Launch launch{.folder = folder};
    std::size_t word = 1;
    for (; word < words.size(); ++word) {
        const std::size_t equals = words[word].find('=');
        if (words[word] == "-u") launch.environment[words[++word]] = std::nullopt;
        else if (equals != std::string::npos) launch.environment[words[word].substr(0, equals)] = words[word].substr(equals + 1);
        else break;
    }
    return runProcess({words.begin() + static_cast<std::ptrdiff_t>(word), words.end()}, launch);
}

class Commands : public testing::TestWithParam<Row> {};

TEST_P(Commands, RowGivesItsStatusStreamsAndFiles) {
    const std::string& row = GetParam().text;
    const TempDir dir;
    for (const char* inputs : {"images", "e2e"})  // each only for the rows that name it: copies cost
        if (row.find(inputs) != std::string::npos)
            fs::copy(dataPath(inputs), dir / inputs, fs::copy_options::recursive | fs::copy_options::copy_symlinks);
    ::setenv("PLAKARD_FONT", (fs::path(PLAKARD_BINARY).parent_path() / "Inter-Black.ttf").c_str(), 1);
    std::vector<std::string> fields;
    for (std::stringstream cells(row); std::getline(cells, fields.emplace_back(), '\t');) {}
    fields.pop_back();
    for (std::string& field : fields) field = unescaped(field, dir.path);
    const std::vector<std::string> words(fields.begin() + 3, fields.end());
    const auto before = snapshot(dir.path);
    const Outcome run = runRow(words, dir.path);
    ::unsetenv("PLAKARD_FONT");
    EXPECT_EQ(run.status, std::stoi(fields[0])) << row;
    EXPECT_EQ(run.out, fields[1]) << row;
    EXPECT_EQ(run.err, fields[2]) << row;
    if (run.status != 0) {
        EXPECT_EQ(snapshot(dir.path), before) << row;
    }
    if (run.status != 0 || words[0] == "probe" || !run.out.ends_with(".png\n")) return;
    const fs::path written = run.out.substr(0, run.out.size() - 1);
    EXPECT_EQ(readBytes(written).substr(25, 1), std::string(1, '\2')) << row;
    const fs::path expected = dataPath("cases/expected") / written.filename();
    if (std::getenv("PLAKARD_UPDATE_GOLDEN")) fs::copy_file(written, expected, fs::copy_options::overwrite_existing);
    if (fs::exists(expected)) {
        EXPECT_TRUE(Canvas(written) == Canvas(expected)) << row;
    }
}

INSTANTIATE_TEST_SUITE_P(Table, Commands, testing::ValuesIn(tableRows()), [](const testing::TestParamInfo<Row>& row) {
    return "line" + std::to_string(row.param.line);
});

}  // namespace
}  // namespace plakard::test
