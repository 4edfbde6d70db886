// Whole upgrades with a real shell: the server is a directory, and "cp" is what fetches.
#include <filesystem>

#include "image.h"
#include "upgrade.h"

using namespace pendra::test;

namespace {

class UpgradeFlow : public UpgradeTest {
  protected:
    void SetUp() override {
        device().runShell = true;
        std::filesystem::create_directory(path("server"));
        loadTemplate("cp \"" + path("server") + "/$(basename \"$url\")\" \"$savefn\" 2>/dev/null");
    }
    void serve(const std::string& name, const std::string& content) const {
        writeFile(path("server/" + name), content);
    }

    // The status document after an action.
    std::string status(uint32_t action) const {
        act(action);
        return readFile(path("zepcheckfw.xml"));
    }
    static std::string document(const std::string& content) {
        return "<?xml version=\"1.0\" ?><root>" + content + "</root>\n";
    }

    bool appears(const std::string& name) const {
        for (int tries = 0; tries < 500 && readFile(path(name)).empty(); tries++)
            usleep(10000);
        return !readFile(path(name)).empty();
    }
    static void pollToTheEnd() {
        for (int tries = 0; tries < 100 && fwXmlData.status == 3; tries++)
            act('3');
    }
};

TEST_F(UpgradeFlow, SearchDownloadAndUpgrade_GoThrough) {
    const std::string image = makeImage(imageData(5056)); // 5120 bytes
    serve("PX.xml", kList);
    serve("notes.txt", "What is new");
    serve("PX_FW2.0.bin", image);

    EXPECT_EQ(document("<fwsize>0</fwsize>\n<fwver>2.0.</fwver>\n<result>2</result>"), status('1'));
    EXPECT_TRUE(appears("zepfwnotes.xml"));
    EXPECT_EQ("What is new", readFile(path("zepfwnotes.xml")));

    act('2');
    EXPECT_EQ(3, fwXmlData.status);
    pollToTheEnd();
    EXPECT_EQ(document("<fwsize>5.00 K</fwsize>\n<fwver>2.0.</fwver>\n<result>4</result>"), status('9'));
    EXPECT_EQ(1U, check(path("upld.bin").c_str(), 0, static_cast<int32_t>(image.size()), nullptr));

    EXPECT_EQ(document("<time>180</time>\n<fwsize>5.00 K</fwsize>\n<fwver>2.0.</fwver>\n<result>5</result>"),
              status('4'));
}

TEST_F(UpgradeFlow, StartingOver_RemovesEveryFile) {
    for (const char* name : {"zepcheckfw.xml", "upld.bin", "zepfwnotes.xml", "zepfwtmp.txt"})
        writeFile(path(name), "earlier");
    EXPECT_EQ(document("<result>0</result>"), status('0'));
    for (const char* name : {"upld.bin", "zepfwnotes.xml", "zepfwtmp.txt"})
        EXPECT_FALSE(std::filesystem::exists(path(name))) << name;
}

TEST_F(UpgradeFlow, ServerWithoutTheList_EndsTheSearch) {
    EXPECT_EQ(document("<result>-5</result>"), status('1'));
    serve("PX.xml", kList);
    EXPECT_EQ(document("<result>-5</result>"), status('1')); // only starting over leads out
    status('0');
    status('1');
    EXPECT_EQ(2, fwXmlData.status);
}

// It ends like one that succeeds; the check before flashing finds out.
TEST_F(UpgradeFlow, FailedDownload_EndsWithoutAnImage) {
    serve("PX.xml", kList);
    status('1');
    status('2');
    pollToTheEnd();
    EXPECT_EQ(document("<fwsize>0</fwsize>\n<fwver>2.0.</fwver>\n<result>4</result>"), status('9'));
    testing::internal::CaptureStderr();
    const std::string failed = status('4');
    testing::internal::GetCapturedStderr();
    EXPECT_EQ(document("<result>-2</result>"), failed);
}

} // namespace
