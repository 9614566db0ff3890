#include "kalimkit/host/headless/ScenarioPlayer.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "kalimkit/tool/MDrawTool.h"
#include "kalimkit/ui/environment/Environment.h"
#include "tests/support/RecordingDevice.h"

namespace kalim::test {

namespace {

// Pictures by name instead of files.
class NamedPictures : public ScenarioFiles {
public:
    explicit NamedPictures(gfx::Device& device) {
        _pictures["photo.png"] =
            device.makeImage(gfx::Bitmap(600, 400), 1, gfx::ImageOrientation::Up);
    }

    LoadedPicture loadPicture(const std::string& path) override {
        const auto found = _pictures.find(path);
        if (found == _pictures.end()) return {nullptr, path + ": there is no such picture"};
        return {found->second, {}};
    }
    std::optional<std::string> savePicture(const std::string& path,
                                           const gfx::ImageRef& image) override {
        if (path == "full.png") return "full.png: no room";
        saved[path] = image->pixelSize();
        return std::nullopt;
    }

    std::map<std::string, gfx::PixelSize> saved;

private:
    std::map<std::string, gfx::ImageRef> _pictures;
};

class ScenarioPlayerTest : public testing::Test {
protected:
    void SetUp() override { MDrawTool::resetNames(); }

    // What the step complains about; empty when all is well.
    std::string problemOf(const std::string& line) { return player.play(line).value_or(""); }
    // What the step prints.
    std::string printOf(const std::string& line) {
        printed.clear();
        EXPECT_EQ(problemOf(line), "") << line;
        return printed.empty() ? "" : printed.back();
    }
    void playWell(const std::vector<std::string>& lines) {
        for (const std::string& line : lines)
            EXPECT_EQ(problemOf(line), "") << line;
    }
    std::string printedCanvas() { return printOf(R"({"print":"canvas"})"); }

    RecordingDevice device;
    NamedPictures files{device};
    std::vector<std::string> printed;
    ScenarioPlayer player{device, files,
                          [this](const std::string& line) { printed.push_back(line); }};
};

struct Mistake {
    const char* line;
    const char* problem;
};

}  // namespace

TEST_F(ScenarioPlayerTest, EveryMistakeIsNamedAndChangesNothing) {
    const Mistake mistakes[] = {
        {R"({"wait":)", "broken JSON at byte 9: syntax error"},
        {"# a comment", "broken JSON at byte 1"},
        {R"({"wait":1e999})", "number overflow parsing '1e999'"},
        {R"({"wait":1,"wait":2})", "the key \"wait\" is there twice"},
        {R"([1])", "a step must be an object, not [1]"},
        {R"({})", "a step must say what to do"},
        {R"({"tuch":"began"})", "there is no step \"tuch\"; did you mean touch?"},
        {R"({"wait":1,"print":"canvas"})", "a step does one thing, not both \"wait\" and"},
        {R"({"call":"undo","arguments":[]})", "\"call\" has no key \"arguments\""},

        {R"({"wait":"long"})", "\"wait\" must be a number, not \"long\""},
        {R"({"wait":-0.1})", "\"wait\" must be a number of seconds from 0 to 3600, not -0.1"},
        {R"({"wait":3601})", "not 3601"},
        {R"({"print":"tools"})",
         "\"print\" must be canvas, editor, accessibility, pointer or announcements, not "
         "\"tools\""},
        {R"({"print":"editor"})", "for the editor's screen"},
        {R"({"host":"remove","args":[]})", "for the editor's screen"},

        {R"({"call":"setDrawLineWith","args":[1]})",
         "the canvas has no operation setDrawLineWith; did you mean setDrawLineWidth?"},
        {R"({"call":"explode"})", "the canvas has no operation explode"},
        {R"({"call":"undo","args":[1]})", "undo takes 0 arguments, not 1"},
        {R"({"call":"setDrawLineWidth"})", "setDrawLineWidth takes 1 argument, not 0"},
        {R"({"call":"setDrawLineWidth","args":{"w":1}})", "\"args\" must be a list"},
        {R"({"call":"setDrawLineWidth","args":["wide"]})",
         "argument 1 of setDrawLineWidth must be a number, not \"wide\""},
        {R"({"call":"setDrawColorIsTranslucent","args":["#FF0000",1]})",
         "argument 2 of setDrawColorIsTranslucent must be true or false, not 1"},
        {R"({"call":"setDrawColorIsTranslucent","args":["red",false]})",
         "must be a colour \"#RRGGBB\" or \"#RRGGBBAA\", not \"red\""},
        {R"({"call":"beginDrawingForTypeWithDrawType","args":[0,-1]})",
         "argument 2 of beginDrawingForTypeWithDrawType must be a whole number from 0 on, not -1"},
        {R"({"call":"beginDrawingForTypeWithDrawType","args":[0.5,0]})",
         "must be a whole number, not 0.5"},
        {R"({"call":"setFScal","args":[1e39]})", "must be a number of single precision"},
        {R"({"call":"invertViewPoint","args":[[1,2,3]]})", "must be a point [x,y]"},
        {R"({"call":"selectTools","args":[[0]]})",
         "argument 1 of selectTools names tool 0, but there are 0"},

        {R"({"gesture":"swipe","state":"began"})", "no recogniser of swipe"},
        {R"({"gesture":"rotation"})", "\"gesture\" needs \"state\""},
        {R"({"gesture":"rotation","state":"possible"})", "\"state\" must be began, changed"},
        {R"({"gesture":"rotation","state":"began","value":"a"})", "\"value\" must be a number"},

        {R"({"make":"MDrawFlatArrow","points":[[0,0],[90,0]]})",
         "there is no class of tools MDrawFlatArrow; did you mean MDrawFatArrow?"},
        {R"({"make":"MDrawLine"})", "\"make\" needs \"points\""},
        {R"({"make":"MDrawLine","points":[[0,0]]})", "\"points\" must be two or more"},
        {R"({"make":"MDrawLine","points":[[0,0],[0,5]]})", "make no valid MDrawLine"},
        {R"({"make":"MDrawLine","points":[[0,0],[0,9]],"lineWidth":-1})",
         "\"lineWidth\" must be from 0 to 1000000, not -1"},
        {R"({"make":"MDrawLine","points":[[0,0],[0,9]],"color":"#12345"})", "not \"#12345\""},

        {R"({"picture":"lost.png"})", "lost.png: there is no such picture"},
        {R"({"picture":7})", "\"picture\" must be a text, not 7"},
        {R"({"export":"a.png"})", "there is nothing to export"},

        {R"({"type":"hello"})", "no text view is focused"},
        {R"({"compose":1})", "\"compose\" must be a text, not 1"},
        {R"({"key":"left"})", "no text view is focused"},
        {R"({"keyboard":300})", "no text view is focused"},
        {R"({"keyboard":-1})", "\"keyboard\" must be a height from 0 to that of the view, not -1"},
    };
    const std::string before = printedCanvas();
    for (const Mistake& mistake : mistakes) {
        EXPECT_NE(problemOf(mistake.line).find(mistake.problem), std::string::npos)
            << mistake.line << " said: " << problemOf(mistake.line);
        EXPECT_EQ(printedCanvas(), before) << mistake.line;
    }
    EXPECT_TRUE(files.saved.empty());
}

TEST_F(ScenarioPlayerTest, MessagesStayShortAndShowNoControlCharacters) {
    const std::string unknown = problemOf(R"({"call":"a\nb\u001b[31mred"})");
    EXPECT_EQ(unknown, R"(the canvas has no operation "a\nb\u001b[31mred")");
    const std::string text(5'000'000, 'x');
    for (const std::string& line :
         {R"({"call":")" + text + R"("})", R"({"make":")" + text + R"("})", "{\"" + text + "\":1}",
          R"({"wait":1,")" + text + R"(":1})"}) {
        const std::string problem = problemOf(line);
        EXPECT_FALSE(problem.empty());
        EXPECT_LT(problem.size(), 200U) << problem.substr(0, 200);
    }
    std::string keys = R"({"call":"canUndo")";
    for (int i = 0; i < 100'000; ++i)
        keys += ",\"k" + std::to_string(i) + "\":1";
    EXPECT_NE(problemOf(keys + "}").find("more than 32 keys"), std::string::npos);
    std::string points = R"({"touch":"began","points":[[1,1])";
    for (int i = 0; i < 100'000; ++i)
        points += ",[1,1]";
    EXPECT_EQ(problemOf(points + "]}"), "there are at most 10 fingers, not 100001");
}

TEST_F(ScenarioPlayerTest, EveryMistakeAboutFingersIsNamedAndMovesNone) {
    const Mistake mistakes[] = {
        {R"({"touch":"hover","points":[[1,1]]})", "must be began, moved, ended or cancelled"},
        {R"({"touch":"moved"})", "\"touch\" needs \"points\""},
        {R"({"touch":"moved","points":[]})", "\"points\" names no finger"},
        {R"({"touch":"moved","points":[[1,null]]})",
         "point 1 of \"points\" must be a point [x,y] with coordinates up to 1000000, not "
         "[1,null]"},
        {R"({"touch":"moved","points":[[-1000001,1]]})", "not [-1000001,1]"},
        {R"({"touch":"began","points":[[1,1]]})", "finger 1 is on the view already"},
        {R"({"touch":"moved","points":[[1,1]],"ids":[7]})", "finger 7 is not on the view"},
        {R"({"touch":"ended","points":[[1,1],[2,2]]})", "finger 2 is not on the view"},
        {R"({"touch":"moved","points":[[1,1]],"ids":[1,2]})", "must be as many, not 2 and 1"},
        {R"({"touch":"began","points":[[1,1],[2,2]],"ids":[2,2]})", "names finger 2 twice"},
        {R"({"touch":"began","points":[[1,1]],"ids":["a"]})", "id 1 of \"ids\" must be a whole"},
        {R"({"touch":"moved","points":[[1,1]],"lifted":[1]})", "belongs to ended and cancelled"},
        {R"({"touch":"ended","points":[[1,1]],"lifted":[2]})", "not among the points"},
        {R"({"touch":"ended","points":[[1,1]],"lifted":[]})", "\"lifted\" names no finger"},
        {R"({"touch":"began","points":[[1,1],[2,2],[3,3],[4,4],[5,5],[6,6],[7,7],[8,8],[9,9],[9,8],[9,7]]})",
         "there are at most 10 fingers, not 11"},
    };
    playWell(
        {R"({"touch":"began","points":[[10,10]]})", R"({"touch":"moved","points":[[60,60]]})"});
    printedCanvas();
    const std::string before = printedCanvas();
    for (const Mistake& mistake : mistakes) {
        EXPECT_NE(problemOf(mistake.line).find(mistake.problem), std::string::npos)
            << mistake.line << " said: " << problemOf(mistake.line);
        EXPECT_EQ(printedCanvas(), before) << mistake.line;
    }
}

TEST_F(ScenarioPlayerTest, FingersStayOnTheViewUntilTheyAreLifted) {
    playWell({R"({"touch":"began","points":[[10,10]],"ids":[4]})",
              R"({"touch":"began","points":[[10,10],[50,50]],"ids":[4,9]})",
              R"({"touch":"ended","points":[[10,10],[50,50]],"ids":[4,9],"lifted":[9]})",
              R"({"touch":"moved","points":[[20,20]],"ids":[4]})"});
    EXPECT_EQ(problemOf(R"({"touch":"moved","points":[[50,50]],"ids":[9]})"),
              "finger 9 is not on the view");
    playWell({R"({"touch":"began","points":[[60,60]],"ids":[9]})",
              R"({"touch":"cancelled","points":[[20,20],[60,60]],"ids":[4,9]})",
              R"({"touch":"began","points":[[1,1]],"ids":[4]})"});
}

TEST_F(ScenarioPlayerTest, AFingerThatStaysMovesBeforeAnotherLandsOrLeaves) {
    // The second finger ends the box where the first one is by then.
    playWell({R"({"call":"beginDrawingForTypeWithDrawType","args":[0,0]})",
              R"({"touch":"began","points":[[10,10]]})", R"({"touch":"moved","points":[[50,50]]})",
              R"({"touch":"began","points":[[110,90],[200,200]]})"});
    EXPECT_NE(printedCanvas().find(R"("frame":[10,10,100,80])"), std::string::npos);
}

TEST_F(ScenarioPlayerTest, PrintsAnEmptyCanvasInTheOrderOfTheKeys) {
    EXPECT_EQ(printedCanvas(),
              R"({"tools":[],"selection":null,"canUndo":false,"canRedo":false,"hasDrawed":false,)"
              R"("ctxRect":[0,0,0,0],"contextScale":1,"editingText":false,"events":[],"alerts":[],)"
              R"("cost":{"pixels":1316640,"tools":0}})");
}

TEST_F(ScenarioPlayerTest, ReturnedValuesArePrintedAndOthersAreNot) {
    playWell({R"({"picture":"photo.png"})"});
    const std::pair<const char*, const char*> calls[] = {
        {R"({"call":"setDrawLineWidth","args":[12]})", ""},
        {R"({"call":"lineWidth"})", R"({"result":12})"},
        {R"({"call":"color","args":[]})", R"({"result":"#00FF00FF"})"},
        {R"({"call":"drawToolClass"})", R"({"result":"MDrawLine"})"},
        {R"({"call":"beginDrawingForTypeWithDrawType","args":[99,0]})", ""},
        {R"({"call":"drawToolClass"})", R"({"result":null})"},
        {R"({"call":"undo"})", R"({"result":false})"},
        {R"({"call":"invertViewPoint","args":[[1.5,-2]]})", R"({"result":[1.5,-2]})"},
        // 600 x 400 fitted into 390 x 844 and centred.
        {R"({"call":"bgImgRect"})", R"({"result":[0,292,390,260]})"},
    };
    for (const auto& [line, output] : calls)
        EXPECT_EQ(printOf(line), output) << line;
}

TEST_F(ScenarioPlayerTest, ExportHandsTheCompositeToTheFilesAndReportsTheirTrouble) {
    playWell({R"({"picture":"photo.png"})", R"({"export":"out.png"})"});
    EXPECT_EQ(files.saved.at("out.png"), (gfx::PixelSize{780, 520}));
    EXPECT_EQ(problemOf(R"({"export":"full.png"})"), "full.png: no room");
}

TEST(ScenarioPlayer, GivesTheEnvironmentBackThatWasThereBefore) {
    RecordingDevice device;
    NamedPictures files(device);
    const bool hadOne = ui::Environment::hasCurrent();
    {
        ScenarioPlayer outer(device, files, {});
        const ui::Environment* first = &ui::Environment::current();
        {
            ScenarioPlayer inner(device, files, {}, {{100, 100}, 3});
            EXPECT_EQ(ui::Environment::current().screen().scale, 3);
        }
        EXPECT_EQ(&ui::Environment::current(), first);
    }
    EXPECT_EQ(ui::Environment::hasCurrent(), hadOne);
}

}  // namespace kalim::test
