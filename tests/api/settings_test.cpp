// Settings in a file: what is saved in which order, what a script from elsewhere may look like, what validation finds.
#include <filesystem>
#include <fstream>
#include <sstream>

#include "support/scripted_factory.h"

namespace kiv_test {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

// Registers 0x00 to 0x7F are plain memory of the camera.
constexpr const char* description = R"(<?xml version="1.0" encoding="utf-8"?>
<RegisterDescription ModelName="Settings" VendorName="Kiv" ToolTip="" StandardNameSpace="GEV" SchemaMajorVersion="1" SchemaMinorVersion="1"
 SchemaSubMinorVersion="0" MajorVersion="1" MinorVersion="0" SubMinorVersion="0" ProductGuid="12345678-0000-0000-0000-000000000000"
 VersionGuid="12345678-0000-0000-0000-000000000001" xmlns="http://www.genicam.org/GenApi/Version_1_1">
<Category Name="Root"><pFeature>Width</pFeature><pFeature>Inner</pFeature></Category>
<Category Name="Inner">
  <pFeature>LineSelector</pFeature><pFeature>Level</pFeature><pFeature>Mode</pFeature><pFeature>Trim</pFeature><pFeature>Gain</pFeature>
  <pFeature>Title</pFeature><pFeature>Serial</pFeature><pFeature>Start</pFeature><pFeature>Absent</pFeature><pFeature>Root</pFeature>
</Category>
<Integer Name="Width"><Streamable>Yes</Streamable><pValue>WidthReg</pValue><Min>16</Min><Max>0x1000000FF</Max></Integer>
<IntReg Name="WidthReg"><Address>0x00</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort><Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>
<Integer Name="LineSelector"><pValue>LineReg</pValue><Min>0</Min><Max>3</Max><Inc>1</Inc><pSelected>Level</pSelected></Integer>
<IntReg Name="LineReg"><Address>0x04</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort><Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>
<Integer Name="Level"><Streamable>Yes</Streamable><pValue>LevelReg</pValue></Integer>
<IntReg Name="LevelReg"><Address>0x10</Address><pIndex Offset="4">LineReg</pIndex><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort><Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>
<Enumeration Name="Mode"><Streamable>Yes</Streamable>
  <EnumEntry Name="Slow"><DisplayName>In peace</DisplayName><Value>0</Value></EnumEntry>
  <EnumEntry Name="Never"><pIsAvailable>Nothing</pIsAvailable><Value>1</Value></EnumEntry>
  <EnumEntry Name="Fast"><Value>2</Value></EnumEntry>
  <pValue>ModeReg</pValue><pSelected>Trim</pSelected></Enumeration>
<IntReg Name="ModeReg"><Address>0x20</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort><Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>
<Integer Name="Nothing"><Value>0</Value></Integer>
<Integer Name="Trim"><Streamable>Yes</Streamable><pValue>TrimReg</pValue></Integer>
<IntReg Name="TrimReg"><Address>0x24</Address><pIndex Offset="4">ModeReg</pIndex><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort><Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>
<Float Name="Gain"><Streamable>Yes</Streamable><pValue>GainReg</pValue><Min>0.5</Min><Max>16</Max></Float>
<FloatReg Name="GainReg"><Address>0x34</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort><Endianess>LittleEndian</Endianess></FloatReg>
<StringReg Name="Title"><Streamable>Yes</Streamable><Address>0x40</Address><Length>32</Length><AccessMode>RW</AccessMode><pPort>Device</pPort></StringReg>
<IntReg Name="Serial"><Address>0x60</Address><Length>4</Length><AccessMode>RO</AccessMode><pPort>Device</pPort><Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>
<Command Name="Start"><pValue>StartReg</pValue><CommandValue>1</CommandValue></Command>
<IntReg Name="StartReg"><Address>0x64</Address><Length>4</Length><AccessMode>WO</AccessMode><pPort>Device</pPort><Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>
<Integer Name="Absent"><pIsAvailable>Nothing</pIsAvailable><pValue>WidthReg</pValue></Integer>
<Port Name="Device"></Port>
</RegisterDescription>)";

// A document with a type is checked against it: without these every script with entities would be refused for that alone.
const std::string declared =
    "<!ELEMENT Script ANY><!ELEMENT CommandList ANY><!ELEMENT Command ANY><!ELEMENT FeatureName ANY><!ELEMENT FeatureValue ANY>";

class SettingsFile : public ScriptedFactory {
protected:
    void Open(std::string text = description) {
        auto& remote = producer->FirstDevice().remote;
        remote.memory.clear();
        remote.memory[0] = std::string(0x80, '\0');
        remote.Describe("Settings.xml", text);
        ASSERT_NO_FATAL_FAILURE(OpenCamera());
        SetRegister(0x00, 64);
        for (std::uint32_t line = 0; line < 4; ++line) SetRegister(0x10 + 4 * line, 100 + line);
        SetRegister(0x24, 7), SetRegister(0x2C, 9);
        ASSERT_STATUS(K_ST_SUCCESS, K_Camera_SetValueDouble(camera, "Gain", 1.5));
        ASSERT_STATUS(K_ST_SUCCESS, K_Camera_SetValueInt64(camera, "LineSelector", 2));
        ASSERT_STATUS(K_ST_SUCCESS, K_Camera_SetValueString(camera, "Title", "a <&> \xC3\xA9"));
    }
    std::string File() { return folder.In("settings.xml"); }
    std::string FileText() {
        std::ostringstream text;
        text << std::ifstream(File(), std::ios::binary).rdbuf();
        return text.str();
    }
    /// The saved pairs as "Name=Value".
    std::vector<std::string> Pairs() {
        std::vector<std::string> pairs;
        std::istringstream lines(FileText());
        for (std::string line; std::getline(lines, line);) {
            auto value_of = [&](const std::string& element) -> std::string {
                auto begin = line.find("<" + element + ">"), end = line.find("</" + element + ">");
                return begin == std::string::npos ? ""
                                                  : line.substr(begin + element.size() + 2, end - begin - element.size() - 2);
            };
            if (line.find("<FeatureName>") != std::string::npos) pairs.push_back(value_of("FeatureName") + "=");
            if (line.find("<FeatureValue>") != std::string::npos) pairs.back() += value_of("FeatureValue");
        }
        return pairs;
    }
    void Script(const std::string& commands, const std::string& head = "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n") {
        std::ofstream(File(), std::ios::binary) << head << "<Script><CommandList>" << commands << "</CommandList></Script>\n";
    }
    static std::string Command(const std::string& name, const std::string& value) {
        return "<Command><FeatureName>" + name + "</FeatureName><FeatureValue>" + value + "</FeatureValue></Command>\n";
    }
    K_STATUS_CODES Load(std::uint32_t mode) { return K_Camera_LoadSettings(camera, File().c_str(), mode); }
    std::string Findings() {
        std::uint32_t size = 0;
        EXPECT_STATUS(K_ST_SUCCESS, K_Camera_GetSettingsValidationErrorInfo(camera, nullptr, &size));
        std::string text(size, '\0');
        EXPECT_STATUS(K_ST_SUCCESS, K_Camera_GetSettingsValidationErrorInfo(camera, text.data(), &size));
        text.pop_back();
        return text;
    }
};

TEST_F(SettingsFile, SavesSelectorsBeforeWhatTheySelect) {
    ASSERT_NO_FATAL_FAILURE(Open());
    ASSERT_STATUS(K_ST_SUCCESS, K_Camera_SaveSettings(camera, File().c_str(), K_SAVE_ALL));
    EXPECT_THAT(Pairs(),
                ElementsAre("Width=64", "LineSelector=0", "Level=100", "LineSelector=1", "Level=101", "LineSelector=2",
                            "Level=102", "LineSelector=3", "Level=103", "LineSelector=2", "Level=102", "Mode=Slow", "Trim=7",
                            "Mode=Fast", "Trim=9", "Mode=Slow", "Trim=7", "Gain=1.5", "Title=a &lt;&amp;&gt; \xC3\xA9"));
    EXPECT_EQ(2, Register(0x04)) << "the selector has its value back";
    EXPECT_THAT(FileText(), ::testing::StartsWith("<?xml version=\"1.0\" encoding=\"utf-8\""));
    EXPECT_THAT(FileText(), HasSubstr("</Command>\r\n"));
}

TEST_F(SettingsFile, SavesWhatTheModeAsksFor) {
    ASSERT_NO_FATAL_FAILURE(Open());
    const auto count = [&](std::uint32_t mode) {
        EXPECT_STATUS(K_ST_SUCCESS, K_Camera_SaveSettings(camera, File().c_str(), mode));
        return Pairs().size();
    };
    // An integer selector's steps are saved whatever the mode; its own place in the category only if it is streamable.
    EXPECT_EQ(18u, count(K_SAVE_STREAMABLE_ONLY));
    EXPECT_EQ(18u, count(K_SAVE_AUTO));
    EXPECT_EQ(18u, count(77));
    EXPECT_EQ(19u, count(K_SAVE_ALL));
    CloseCamera();
    std::string without = description;
    for (const std::string mark = "<Streamable>Yes</Streamable>"; without.find(mark) != std::string::npos;)
        without.erase(without.find(mark), mark.size());
    ASSERT_NO_FATAL_FAILURE(Open(without));
    EXPECT_EQ(19u, count(K_SAVE_AUTO)) << "nothing is streamable: everything is saved";
    std::remove(File().c_str());
    ASSERT_STATUS(K_ST_SUCCESS, K_Camera_SetValueString(camera, "Title", ""));
    const auto file = File();
    ASSERT_STATUS(K_ST_SUCCESS, K_Camera_SaveSettingsW(camera, std::wstring(file.begin(), file.end()).c_str(), K_SAVE_ALL));
    EXPECT_EQ("Title=", Pairs().back());
    EXPECT_THAT(FileText(), HasSubstr("<FeatureValue/>"));
    ASSERT_STATUS(K_ST_SUCCESS, K_Camera_SetValueString(camera, "Title", "<&>\"'\r\n\t\xE9"));
    EXPECT_STATUS(K_ST_SUCCESS, K_Camera_SaveSettings(camera, file.c_str(), K_SAVE_ALL));
    EXPECT_THAT(FileText(), HasSubstr("<FeatureValue>&lt;&amp;&gt;\"'&#xD;\n\t\xC3\xA9</FeatureValue>\r\n    </Command>\r\n"
                                      "  </CommandList>\r\n\r\n</Script>\r\n"));
    for (auto* title : {"\x01", "a\x1F", "\xEF\xBF\xBF"}) {
        std::remove(file.c_str());
        ASSERT_STATUS(K_ST_SUCCESS, K_Camera_SetValueString(camera, "Title", title));
        EXPECT_STATUS(K_ST_SUCCESS, K_Camera_SaveSettings(camera, file.c_str(), K_SAVE_ALL));
        EXPECT_FALSE(std::filesystem::exists(file));
    }
    EXPECT_THAT(debug.Text(), HasSubstr("the value of 'Title' has a character that XML cannot hold"));
}

TEST_F(SettingsFile, RoundTripRestoresEverythingInEachMode) {
    ASSERT_NO_FATAL_FAILURE(Open());
    // A selector that is not streamable has no place of its own in a streamable script: it stays at its last step.
    ASSERT_STATUS(K_ST_SUCCESS, K_Camera_SetValueInt64(camera, "LineSelector", 3));
    for (std::uint32_t saved_as : {0u, 1u, 2u})
        for (std::uint32_t loaded_as : {0u, 2u, 3u}) {
            ASSERT_STATUS(K_ST_SUCCESS, K_Camera_SaveSettings(camera, File().c_str(), saved_as));
            const auto saved = FileText();
            for (std::uint64_t address : {0x10, 0x14, 0x18, 0x1C, 0x24, 0x2C}) SetRegister(address, 1);
            SetRegister(0x00, 32);
            ASSERT_STATUS(K_ST_SUCCESS, K_Camera_InvalidateNodes(camera));
            ASSERT_STATUS(K_ST_SUCCESS, K_Camera_SetValueDouble(camera, "Gain", 8));
            ASSERT_STATUS(K_ST_SUCCESS, K_Camera_SetValueString(camera, "Title", "other"));
            EXPECT_STATUS(K_ST_SUCCESS, Load(loaded_as));
            EXPECT_EQ("", Findings());
            ASSERT_STATUS(K_ST_SUCCESS, K_Camera_SaveSettings(camera, File().c_str(), saved_as));
            EXPECT_EQ(saved, FileText()) << saved_as << " " << loaded_as;
        }
}

TEST_F(SettingsFile, ValidationNamesEachFaultInTheScript) {
    ASSERT_NO_FATAL_FAILURE(Open());
    Script(Command("#Note", "anything") + Command("Nowhere", "1") + Command("Width", "15") + Command("Mode", "Sideways") +
           Command("Mode", "In peace") + Command("Mode", "Fast") + Command("Mode", "0") + Command("Gain", "99") +
           Command("Start", "x") + Command("LineSelector", "3"));
    EXPECT_STATUS(K_ST_VALIDATION_ERROR, Load(K_LOAD_AUTO));
    EXPECT_EQ(
        "Error: Feature 'Nowhere' not found in node tree!\n"
        "Warning: Feature 'Width' with value '15' is outside the legal range of the feature [16-255]\n"
        "Error: Unable to match the enumeration value 'Sideways' for Feature 'Mode'\n"
        "Warning: Feature 'Gain' with value '99' is outside the legal range of the feature [0.500000-16.000000]\n",
        Findings());
    EXPECT_EQ(64u, Register(0x00)) << "nothing but selectors is written";
    EXPECT_EQ(3u, Register(0x04)) << "and these stay where the script put them";
    Script(Command("Width", "4"));
    EXPECT_STATUS(K_ST_VALIDATION_WARNING, Load(K_VALIDATE_ONLY));
    Script(Command("Width", "40"));
    EXPECT_STATUS(K_ST_SUCCESS, Load(K_VALIDATE_ONLY));
    EXPECT_EQ(64u, Register(0x00));
    std::uint32_t size = 0;
    EXPECT_STATUS(K_ST_SUCCESS, K_Camera_GetSettingsValidationErrorInfo(camera, nullptr, &size));
    EXPECT_EQ(1u, size) << "each validation begins anew";
    std::string commands;
    for (int i = 0; i < 300; ++i) commands += Command("Unknown" + std::to_string(i), "1");
    Script(commands);
    EXPECT_STATUS(K_ST_VALIDATION_ERROR, Load(K_VALIDATE_ONLY));
    EXPECT_EQ(10000u, Findings().size());
    char cut[8] = "-------";
    size = 5;
    EXPECT_STATUS(K_ST_SUCCESS, K_Camera_GetSettingsValidationErrorInfo(camera, cut, &size));
    EXPECT_STREQ("Error--", cut);
    EXPECT_EQ(10001u, size);
}

TEST_F(SettingsFile, ReplayStopsOrGoesOnAfterAFailure) {
    ASSERT_NO_FATAL_FAILURE(Open());
    const auto commands = Command("Width", "24") + Command("Nowhere", "1") + Command("Width", "15") + Command("Level", "55");
    Script(commands);
    EXPECT_STATUS(K_ST_SUCCESS, Load(9));
    EXPECT_EQ(24u, Register(0x00));
    EXPECT_EQ(102u, Register(0x18)) << "stopped at the unknown feature";
    EXPECT_THAT(debug.Text(), HasSubstr("Node 'Nowhere' not found in node tree! Skipping write\n"));
    EXPECT_STATUS(K_ST_SUCCESS, Load(K_LOAD_ONLY));
    EXPECT_EQ(55u, Register(0x18)) << "went on";
    EXPECT_THAT(debug.Text(), HasSubstr("K_Node_SetValueString() failed!\nNode 'Width' reported the following error: '"));
    Script(Command("Width", "15") + Command("Level", "66"));
    EXPECT_STATUS(K_ST_SUCCESS, Load(K_LOAD_AUTO)) << "a warning does not keep the value from being tried";
    EXPECT_EQ(55u, Register(0x18)) << "but the camera's refusal ends the replay";
}

TEST_F(SettingsFile, TakesScriptsFromElsewhere) {
    ASSERT_NO_FATAL_FAILURE(Open());
    const auto loads = [&](std::uint32_t width) {
        EXPECT_STATUS(K_ST_SUCCESS, Load(K_LOAD_AUTO));
        EXPECT_EQ(width, Register(0x00));
    };
    Script("<!-- note --><Extra>text</Extra>" + Command("Width", "32"),
           "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><!-- \xE9 -->");
    loads(32);
    Script(Command("Width", "&v;"), "<!DOCTYPE Script [" + declared + "<!ENTITY v \"48\">]>");
    loads(48);
    Script(Command("Wi<!-- divides -->dth", "24") + Command("Width", "4&v;<![CDATA[0]]>"),
           "<!DOCTYPE Script [" + declared + "<!ENTITY v \"0\">]>");
    EXPECT_STATUS(K_ST_SUCCESS, Load(K_LOAD_ONLY));
    EXPECT_EQ(40, Register(0x00)) << "comments and sections divide texts, entities do not";
    Script("<Command><FeatureName>Title</FeatureName><FeatureValue></FeatureValue></Command>" + Command("Width", "56"));
    loads(56);
    std::string wide = "\xFF\xFE";
    for (char c : "<Script><CommandList>" + Command("Width", "80") + "</CommandList></Script>") wide += c, wide += '\0';
    std::ofstream(File(), std::ios::binary) << wide;
    loads(80);
    Script("");
    for (std::uint32_t mode = 0; mode < 4; ++mode) EXPECT_STATUS(K_ST_SUCCESS, Load(mode));
}

TEST_F(SettingsFile, RefusesWhatIsNoScript) {
    ASSERT_NO_FATAL_FAILURE(Open());
    const auto secret = folder.In("secret.txt");
    std::ofstream(secret) << "96";
    std::string bomb = "<!DOCTYPE Script [" + declared + "<!ENTITY a0 \"0123456789\">";
    for (int i = 1; i < 12; ++i) {
        bomb += "<!ENTITY a" + std::to_string(i) + " \"";
        for (int k = 0; k < 10; ++k) bomb += "&a" + std::to_string(i - 1) + ";";
        bomb += "\">";
    }
    const struct {
        std::string text;
        const char* reason;  ///< behind the name of the file
    } rows[] = {
        {"", ":1:1: invalid document structure"},
        {"no XML at all", ":1:1: invalid document structure"},
        {"<Script>\n<CommandList>\n<Command></Script>", ":3:12: expected end of tag 'Command'"},
        {"<Script>", "last tag started is 'Script'"},
        {"<Script>" + std::string(1, '\x01') + "</Script>", ":1:10: invalid character 0x1"},
        {"<Script a=1/>", ":1:11: attribute value expected"},
        {"<Script/><Script/>", ":1:10: "},
        {"<Script>" + Command("Title", "a & b") + "</Script>", "expected entity name"},
        {"<Script>" + Command("Width", "&nothing;") + "</Script>", "entity 'nothing' not found"},
        {"<?xml version=\"1.0\" encoding=\"no-such-encoding\"?><Script/>", "NO-SUCH-ENCODING"},
        {"<?xml version=\"1.0\" encoding=\"utf-8\"?><Script>\xC3\x28</Script>", "invalid byte"},
        {bomb + "]><Script>" + Command("Width", "&a11;") + "</Script>", "more than '10000' entity expansions"},
        {"<!DOCTYPE Script [" + declared + "<!ENTITY v SYSTEM \"file://" + secret + "\">]><Script>" + Command("Width", "&v;") +
             "</Script>",
         "unable to open external entity"},
        {"<!DOCTYPE Script [" + declared + "<!ENTITY v \"" + std::string(5000, '1') + "\">]><Script>" + Command("Width", "&v;") +
             "</Script>",
         ": an entity is too long"},
    };
    std::size_t said = 0;
    for (auto& row : rows) {
        std::ofstream(File(), std::ios::binary) << row.text;
        ::testing::internal::CaptureStderr();
        EXPECT_STATUS(K_ST_SETTINGS_FILE_ERROR, Load(K_LOAD_AUTO)) << row.text.substr(0, 80);
        EXPECT_THAT(::testing::internal::GetCapturedStderr(), HasSubstr("arsing " + File())) << row.text.substr(0, 80);
        const auto reasons = debug.Text().substr(said);
        said += reasons.size();
        EXPECT_THAT(reasons, ::testing::AllOf(HasSubstr(File() + ":"), HasSubstr(row.reason)));
    }
    std::filesystem::resize_file(File(), (64u << 20) + 1);
    ::testing::internal::CaptureStderr();
    EXPECT_STATUS(K_ST_SETTINGS_FILE_ERROR, Load(K_LOAD_AUTO));
    EXPECT_THAT(::testing::internal::GetCapturedStderr(), HasSubstr("has more than 67108864 bytes"));
    std::remove(File().c_str());
    ::testing::internal::CaptureStderr();
    EXPECT_STATUS(K_ST_SETTINGS_FILE_ERROR, Load(K_LOAD_ONLY));
    EXPECT_THAT(::testing::internal::GetCapturedStderr(), HasSubstr("settings.xml"));
    EXPECT_EQ(64u, Register(0x00));
}

TEST_F(SettingsFile, ChecksItsArguments) {
    ASSERT_NO_FATAL_FAILURE(Open());
    std::uint32_t size = 1;
    char text[4] = "no";
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Camera_SaveSettings(nullptr, nullptr, 0));
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Camera_LoadSettingsW(nullptr, nullptr, 0));
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Camera_SaveSettingsA(camera, nullptr, 0));
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Camera_SaveSettingsW(camera, nullptr, 0));
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Camera_LoadSettingsA(camera, nullptr, 0));
    EXPECT_STATUS(K_ST_IO, K_Camera_SaveSettings(camera, folder.In("nowhere/x.xml").c_str(), 0));
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Camera_GetSettingsValidationErrorInfo(nullptr, nullptr, nullptr));
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Camera_GetSettingsValidationErrorInfo(camera, text, nullptr));
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Camera_GetSettingsValidationErrorInfo(camera, nullptr, &size));
    EXPECT_STATUS(K_ST_SUCCESS, K_Camera_GetSettingsValidationErrorInfo(camera, text, &size));
    EXPECT_STREQ("no", text) << "an empty text is not copied";
}

}  // namespace
}  // namespace kiv_test
