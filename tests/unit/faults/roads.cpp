// Documents, forms and variables.
#include "roads.h"

#include <algorithm>
#include <iterator>

#include "unit/setupdoc/setup_document.h"

namespace pendra::test {
namespace {

const std::string kAccess = "/lan/wireless5:1/accesscontrol";

void storeRules(int count) {
    auto& tree = device().tree;
    for (int number = 1; number <= count; number++) {
        const std::string rule = kAccess + "/acrule:" + std::to_string(number);
        tree[rule + "/active"] = "1";
        tree[rule + "/mac"] = "02:00:00:00:00:0" + std::to_string(number);
    }
}

void prepareRouter(const std::string&) {
    static const Tree router = [] {
        loadRouter(device());
        storeRules(4);
        return device().tree;
    }();
    device().tree = router;
}

void prepareFixedRouter(const std::string& directory) {
    prepareRouter(directory);
    device().tree["/sys/routerenbl"] = "2";
}

void prepareExtender(const std::string& directory) {
    prepareRouter(directory);
    device().tree["/uplink/hardwaretype"] = "WWan802.11";
    device().tree["/uplink/extendersite/connrefsitebssid"] = "02:00:00:00:00:99";
    device().tree["/runtime/apcloninginfo/extendersite/wirelesstype"] = "5";
}

Element changedDevice() {
    Element access("AccessControl", {{"WlAcEnbl", "1"}, {"WlAcMode", "1"}});
    access.add(ruleElement("02:00:00:00:00:0a")).add(ruleElement("02:00:00:00:00:0b", "0"));
    Element device = deviceElement().set("DeviceName", "Attic");
    device.set(upLinkElement().set("HardwareType", "ADSL").add(ispElement("DSL")));
    return device.set(radioElement("5").set("Channel", "36").set(access));
}

Element askForSurvey() {
    Element upLink = upLinkElement().set("HardwareType", "WWan802.11");
    return deviceElement().set(upLink.add(extenderElement().set("Survey", "1")));
}

// Put together once: the roads are walked many times.
const std::string kChange = documentText(changedDevice());
const std::string kNoChange = documentText(deviceElement());
const std::string kInvalid = documentText(changedDevice().set(radioElement("5").set("Channel", "13")));
const std::string kIncomplete = documentText(changedDevice().set(radioElement("5").drop("Channel")));
const std::string kSurvey = documentText(askForSurvey());

// The result as the client is told it; what a commit then answers.
std::string told(int32_t run, int32_t commit) {
    return "run=" + std::to_string(run) + " result=" + std::to_string(zepXmlData.setResult) + " '" + zepXmlData.setMsg +
           "' commit=" + std::to_string(commit);
}

std::string setUp(const std::string& text) {
    Buffer document(text);
    const int32_t run = do_ZepXml_Parser(document.text());
    return told(run, do_ZepXml_Commit());
}

std::string walkChange(const std::string&) {
    return setUp(kChange);
}
std::string walkNoChange(const std::string&) {
    return setUp(kNoChange);
}
std::string walkInvalid(const std::string&) {
    return setUp(kInvalid);
}
std::string walkMissing(const std::string&) {
    return setUp(kIncomplete);
}

std::string walkCloning(const std::string&) {
    init_ZepVar();
    Buffer document(kChange);
    const int32_t run = do_ZepXml_Parser_for_ApCloning(document.text());
    return told(run, do_ZepXml_Commit_for_ApCloning(1));
}

// The device sets its survey back when it is done, and another cloning comes.
std::string walkSurvey(const std::string& directory) {
    const std::string answer = setUp(kSurvey);
    prepareExtender(directory);
    return answer;
}

std::string walkForm(const std::string&) {
    init_ZepVar();
    char fault[ZEPVAR_VALUE_SIZE] = "";
    const int32_t run =
        do_ZepVar_Parser("zep_Wl2_WirelessName=Attic&zep_Wl2_Channel=6&zep_Upl_Dsl_IspName=Line", '&', fault, 1);
    return told(run, do_ZepVar_Commit()) + " fault='" + fault + "'";
}

std::string call(const char* name, const char* text, uint32_t flags) {
    char value[ZEPVAR_VALUE_SIZE];
    snprintf(value, sizeof value, "%s", text);
    const int32_t code = setget_ZepVar(name, value, flags);
    return " " + std::to_string(code) + "'" + value + "'";
}

std::string walkVariables(const std::string&) {
    init_ZepVar();
    std::string answers = call("zep_Wl2_WirelessName", "", ZEPVAR_GET);
    answers += call("zep_Wl2_WirelessName", "", ZEPVAR_GET | ZEPVAR_PATH);
    answers += call("zep_Wl2_WirelessName", "Attic", ZEPVAR_SET);
    answers += call("zep_Wl2_Channel", "99", ZEPVAR_VALIDATE);
    return answers + call("zep_Wl2_WirelessName", "", ZEPVAR_GET);
}

std::string walkActions(const std::string&) {
    init_ZepVar();
    std::string answers = call("zep_Act_VerifyAllZepVars", "", ZEPVAR_SET);
    answers += call("zep_Wl2_WirelessName", "Attic", ZEPVAR_SET);
    answers += call("zep_Act_ApplyAllZepVars", "", ZEPVAR_SET);
    return answers + call("zep_Act_CommitZepVars", "", ZEPVAR_SET);
}

std::string walkResult(const std::string& directory) {
    snprintf(zepXmlData.tmpPath, sizeof zepXmlData.tmpPath, "%s", directory.c_str());
    write_ZepXml_ResultXml(3, "Device/DeviceName", 0);
    return "result=" + std::to_string(zepXmlData.setResult) + " '" + zepXmlData.setMsg + "'";
}

std::string walkTemporaryXml(const std::string&) {
    zepXmlData.tmpPath[0] = '\0'; // it is read from its node then
    const int first = write_TmpXmlFile("state.xml", "first", "1", 0);
    const int second = write_TmpXmlFile("state.xml", "second", "2", 1);
    const int only = write_ResultXmlFile("only.xml", "third", "3");
    return std::to_string(first) + " " + std::to_string(second) + " " + std::to_string(only);
}

} // namespace

std::vector<Road> setupRoads() {
    return {
        {"ChangingDocument", prepareRouter, walkChange, "run=1 result=0 '' commit=1"},
        {"UnchangedDocument", prepareRouter, walkNoChange, "run=1 result=0 '' commit=0"},
        {"InvalidDocument", prepareRouter, walkInvalid, "run=0 result=3 'Device/Wireless5/Channel' commit=0"},
        {"IncompleteDocument", prepareRouter, walkMissing, "run=0 result=2 'Device/Wireless5/Channel' commit=0"},
        {"RefusedChange", prepareFixedRouter, walkChange, "run=0 result=3 'Device/RouterEnbl' commit=0"},
        {"CloningDocument", prepareExtender, walkCloning, "run=1 result=0 '' commit=1"},
        {"SurveyDocument", prepareExtender, walkSurvey, "run=1 result=0 '' commit=1"},
        {"PostedForm", prepareRouter, walkForm, "run=0 result=0 '' commit=1 fault=''"},
        {"Variables", prepareRouter, walkVariables,
         " 0'Home2.4' 0'/lan/wireless2.4:1/WirelessName' 0'Attic' 2'99' 0'Attic'"},
        {"VariableActions", prepareRouter, walkActions, " 0'' 0'Attic' 0'' 0''"},
        {"ResultDocument", prepareRouter, walkResult, "result=3 'Device/DeviceName'"},
        {"TemporaryXml", prepareRouter, walkTemporaryXml, "0 0 0"},
    };
}

const std::vector<Road>& roads() {
    static const std::vector<Road> all = [] {
        std::vector<Road> joined;
        for (const auto& part : {setupRoads(), deviceRoads(), loggerRoads(), firmwareRoads()})
            std::copy(part.begin(), part.end(), std::back_inserter(joined));
        return joined;
    }();
    return all;
}

const Road& roadNamed(const std::string& name) {
    return *std::find_if(roads().begin(), roads().end(), [&name](const Road& road) { return road.name == name; });
}

void storeAnew(const std::string& path, const std::string& content) {
    std::remove(path.c_str());
    writeFile(path, content);
}

void startRoad(const Road& road, const std::string& directory) {
    resetLibrary();
    device() = {};
    snprintf(daemon_log_path, sizeof daemon_log_path, "%s", directory.c_str());
    std::remove((directory + "/DL_log.txt").c_str());
    road.prepare(directory);
}

void PrintTo(const Road& road, std::ostream* output) {
    *output << road.name;
}

} // namespace pendra::test
