#include "json_text.h"

#include <gtest/gtest.h>

#include "input.h"
#include "tool_testing.h"

using cntrtool::Json;
using cntrtool::kNonFiniteMarker;
using cntrtool::parseJson;
using cntrtool::prettyJson;
using cntrtool_testing::inputErrorOf;

TEST(JsonText, NonFiniteLiteralsBecomeMarkers) {
    const Json j = parseJson("x.json", R"([NaN, -Infinity, Infinity, 1e999, -1e400, 1.5, "NaN"])");
    for (int k = 0; k < 5; ++k)
        EXPECT_EQ(j[k], kNonFiniteMarker) << k;
    EXPECT_EQ(j[5], 1.5);
    EXPECT_EQ(j[6], "NaN");  // inside a string: untouched
}

TEST(JsonText, StringsWithEscapedQuotesAreCopied) {
    const Json j = parseJson("x.json", R"({"a\"NaN": "x\\", "b": 2})");
    EXPECT_EQ(j["a\"NaN"], "x\\");
    EXPECT_EQ(j["b"], 2);
}

TEST(JsonText, MalformedJsonNamesFileAndPlace) {
    EXPECT_EQ(inputErrorOf([] { parseJson("in.json", "{\"a\": [1, 2}"); }),
              "in.json: malformed JSON: parse error at line 1, column 12: syntax error while "
              "parsing array - unexpected '}'; expected ']'");
    EXPECT_NE(inputErrorOf([] { parseJson("in.json", ""); }).find("in.json: malformed JSON"),
              std::string::npos);
}

TEST(JsonText, LayoutKeepsNumberArraysOnOneLine) {
    const Json j = {{"a", Json::array({Json::array({1, 2.5}), Json::array({-3, 0.1})})},
                    {"b", Json::object({{"c", true}, {"d", nullptr}})},
                    {"e", Json::array()}};
    EXPECT_EQ(prettyJson(j),
              "{\n"
              "  \"a\": [[1, 2.5], [-3, 0.1]],\n"
              "  \"b\": {\n"
              "    \"c\": true,\n"
              "    \"d\": null\n"
              "  },\n"
              "  \"e\": []\n"
              "}\n");
}

TEST(JsonText, NumbersReadBackExactly) {
    const double third = 1.0 / 3.0;
    const Json j = Json::array({third, 1e-300, 123456789.123456789});
    const Json back = parseJson("x.json", prettyJson(j));
    EXPECT_EQ(back[0].get<double>(), third);
    EXPECT_EQ(back[1].get<double>(), 1e-300);
    EXPECT_EQ(back[2].get<double>(), 123456789.123456789);
}

TEST(JsonText, NumbersAreTheShortestThatReadBack) {
    // 0.1 + 0.2 is not 0.3: 17 digits tell them apart; 0.3 itself needs 1.
    const Json j = Json::array({0.1 + 0.2, 0.3, 2.0, -1.5e-7, 1e21, 5e-324, 1.7976931348623157e308});
    EXPECT_EQ(prettyJson(j),
              "[0.30000000000000004, 0.3, 2.0, -1.5e-07, 1e+21, 5e-324, 1.7976931348623157e+308]\n");
}

TEST(JsonText, RepeatedKeysAreRefusedWithTheirPlace) {
    const auto errorOf = [](const std::string& text) {
        return inputErrorOf([&] { parseJson("x.json", text); });
    };
    EXPECT_EQ(errorOf(R"({"shapes": [], "shapes": []})"), "x.json: the key \"shapes\" is given twice");
    EXPECT_EQ(errorOf(R"({"shapes": [{"kind": "region"}, {"kind": "region", "points": [],
                          "label": 1, "points": []}]})"),
              "x.json: shape 1: the key \"points\" is given twice");
    EXPECT_EQ(errorOf(R"({"shapes": [{"kind": "region", "holes": [{"points": []},
                          {"holes": [{"label": 1, "label": 2}]}]}]})"),
              "x.json: shape 0, hole 1, hole 0: the key \"label\" is given twice");
    EXPECT_EQ(errorOf(R"({"shapes": [{"kind": "regionset", "regions": [{}, {}, {"a": 1, "a": 1}]}]})"),
              "x.json: shape 0, region 2: the key \"a\" is given twice");
    EXPECT_EQ(errorOf(R"({"images": [{"id": 1}], "annotations": [{"id": 1}, {"id": 2},
                          {"segmentation": [[0, 0, 1, 0, 1, 1]], "bbox": [0], "bbox": [1]}]})"),
              "x.json: annotation 2: the key \"bbox\" is given twice");
    // Inside another array the readers do not name, the place is the shape.
    EXPECT_EQ(errorOf(R"({"shapes": [{"kind": "contour", "extra": [[{"k": 1, "k": 2}]]}]})"),
              "x.json: shape 0: the key \"k\" is given twice");
}

TEST(JsonText, SameKeyInDifferentObjectsIsAccepted) {
    const Json j = parseJson("x.json", R"({"a": {"k": 1, "b": {"k": 2}}, "c": [{"k": 3}, {"k": 4}], "k": 5})");
    EXPECT_EQ(j["a"]["k"], 1);
    EXPECT_EQ(j["a"]["b"]["k"], 2);
    EXPECT_EQ(j["c"][1]["k"], 4);
    EXPECT_EQ(j["k"], 5);
}
