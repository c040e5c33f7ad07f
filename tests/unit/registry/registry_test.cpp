#include <Kiv_Registry.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <kiv/platform/environment.h>
#include <kiv/platform/paths.h>

#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "unit/platform/temporary_folder.h"

using namespace kiv::platform;
using kiv::test::TemporaryFolder;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

std::string last_error() {
    char text[2048] = {};
    uint32_t size = sizeof text;
    EXPECT_EQ(K_ST_SUCCESS, K_Registry_GetLastError(text, &size));
    return text;
}

/// A registry file in a folder of its own, opened.
class Registry {
public:
    explicit Registry(const std::string& producers) : Registry("", "<KivRegistry version='1'>" + producers + "</KivRegistry>") {}
    Registry(const std::string& start, const std::string& text) : path_(folder_.Write("registry.xml", start + text)) {
        status_ = K_Registry_Open(path_.c_str(), &handle_);
        if (!handle_) return;
        EXPECT_EQ(K_ST_SUCCESS, K_Registry_OpenElementList(handle_, K_REGISTRY_LIST_PRODUCERS, &list_));
    }
    ~Registry() {
        if (!handle_) return;
        EXPECT_EQ(K_ST_SUCCESS, K_ElementList_Close(list_));
        EXPECT_EQ(K_ST_SUCCESS, K_Registry_Close(handle_));
    }
    Registry(const Registry&) = delete;
    Registry& operator=(const Registry&) = delete;

    K_STATUS_CODES Status() const { return status_; }
    REGISTRY_HANDLE Handle() const { return handle_; }
    ELEMENT_LIST_HANDLE List() const { return list_; }
    const TemporaryFolder& Folder() const { return folder_; }

    std::vector<std::string> Names() const {
        uint32_t count = 0;
        EXPECT_EQ(K_ST_SUCCESS, K_ElementList_GetNumOfElements(list_, &count));
        std::vector<std::string> names(count);
        for (uint32_t i = 0; i < count; ++i) {
            char name[256];
            uint32_t size = sizeof name;
            EXPECT_EQ(K_ST_SUCCESS, K_ElementList_GetElementNameByIndex(list_, i, name, &size));
            names[i] = name;
        }
        return names;
    }
    std::string Data(const std::string& name, int32_t key) const {
        char text[4096];
        uint32_t size = sizeof text;
        const K_STATUS_CODES status = K_Registry_GetData(handle_, name.c_str(), key, text, &size);
        return status == K_ST_SUCCESS ? text : "status " + std::to_string(status);
    }

private:
    TemporaryFolder folder_;
    std::string path_;
    REGISTRY_HANDLE handle_ = nullptr;
    ELEMENT_LIST_HANDLE list_ = nullptr;
    K_STATUS_CODES status_;
};

TEST(Registry, TellsWhatTheFileSaysInItsOrder) {
    const Registry registry("\xEF\xBB\xBF<?xml version='1.0'?><!-- who --><!DOCTYPE KivRegistry>",
                            R"(<KivRegistry version="1"><Producers>
        <Producer key="B&amp;&#xE4;" path="/b.cti" enabled="false" flag="true"/>
        <!-- and --><Producer path="a.cti" key="A"></Producer></Producers><Producers/>
        <Producers><Producer key="A" path="2.cti"/><Producer key="A#2" path="3.cti"/><Producer key="A" path="4.cti"/></Producers>
      </KivRegistry>)");
    ASSERT_EQ(K_ST_SUCCESS, registry.Status()) << last_error();
    EXPECT_THAT(registry.Names(), ElementsAre("B&\xC3\xA4", "A", "A#3", "A#2", "A#4")) << "each name is there once";
    EXPECT_EQ("/b.cti", registry.Data("B&\xC3\xA4", K_REGISTRY_DATA_PATH));
    EXPECT_EQ("false", registry.Data("B&\xC3\xA4", K_REGISTRY_DATA_ENABLED));
    EXPECT_EQ("true", registry.Data("B&\xC3\xA4", K_REGISTRY_DATA_FLAG));
    EXPECT_EQ("true", registry.Data("A", K_REGISTRY_DATA_ENABLED));
    EXPECT_EQ("false", registry.Data("A", K_REGISTRY_DATA_FLAG));
    EXPECT_EQ("A", registry.Data("A#3", K_REGISTRY_DATA_KEY));
    EXPECT_EQ("2.cti", registry.Data("A#3", K_REGISTRY_DATA_PATH));
    EXPECT_EQ("3.cti", registry.Data("A#2", K_REGISTRY_DATA_PATH));
    EXPECT_EQ("4.cti", registry.Data("A#4", K_REGISTRY_DATA_PATH));
}

TEST(Registry, PathsAreExpandedAndFoundBesideTheFile) {
    const Registry registry(R"(<Producers>
        <Producer key="beside" path="here.cti"/><Producer key="below" path="sub\.\deep.cti"/><Producer key="bare" path="elsewhere.cti"/>
        <Producer key="macro" path="$(KIV_TEST_ROOT)\x/$(KIV_TEST_NONE)$(KIV_TEST_ROOT"/><Producer key="own" path="$(KIV_TEST_NAME).cti"/>
      </Producers>)");
    const TemporaryFolder& folder = registry.Folder();
    EXPECT_EQ("here.cti", registry.Data("beside", K_REGISTRY_DATA_PATH)) << "there is no such file yet";
    folder.Write("here.cti", "");
    create_folders(folder / "sub");
    folder.Write("sub/deep.cti", "");
    set_environment("KIV_TEST_ROOT", "/opt/$(HOME)");
    set_environment("KIV_TEST_NAME", "here");
    EXPECT_EQ(folder / "here.cti", registry.Data("beside", K_REGISTRY_DATA_PATH));
    EXPECT_EQ(std::filesystem::path(folder / "sub/deep.cti"),
              std::filesystem::path(registry.Data("below", K_REGISTRY_DATA_PATH)));
    EXPECT_EQ("elsewhere.cti", registry.Data("bare", K_REGISTRY_DATA_PATH));
    EXPECT_EQ(std::filesystem::path("/opt/$(HOME)/x/$(KIV_TEST_NONE)$(KIV_TEST_ROOT"),
              std::filesystem::path(registry.Data("macro", K_REGISTRY_DATA_PATH)))
        << "values are not read again";
    EXPECT_EQ(folder / "here.cti", registry.Data("own", K_REGISTRY_DATA_PATH));
    unset_environment("KIV_TEST_ROOT");
    unset_environment("KIV_TEST_NAME");
}

TEST(Registry, BadFilesAreRefusedWithTheirLine) {
    const std::string open = "<KivRegistry version='1'>\n<Producers>\n", close = "</Producers></KivRegistry>";
    const struct {
        std::string text;
        int line;
        const char* reason;
    } cases[] = {
        {"", 1, ""},
        {"\n\nno xml", 3, ""},
        {"<!-- empty -->\n", 2, ""},
        {"<Other version='1'/>", 1, "<Other> where <KivRegistry> is expected"},
        {"<KivRegistry/>", 1, "lacks the attribute 'version'"},
        {"<KivRegistry version='2'/>", 1, "version '2'"},
        {"<KivRegistry version='1'/>\n<KivRegistry version='1'/>", 2, "follows </KivRegistry>"},
        {open + "\n<Producer path='x'/>" + close, 4, "lacks the attribute 'key'"},
        {open + "<Producer key='x'/>" + close, 3, "lacks the attribute 'path'"},
        {open + "<Producer key='' path='x'/>" + close, 3, "'key' is empty"},
        {open + "<Producer key='x' path='" + std::string(4096, 'x') + "'/>" + close, 3, "more than 4095 bytes"},
        {open + "<Producer key='a' path='b'\n enable='false'/>" + close, 3, "unknown attribute 'enable'"},
        {open + "<Producer key='a' path='b' key='c'/>" + close, 3, "'key' twice"},
        {open + "<Producer key='a' path='b' enabled='no'/>" + close, 3, "'enabled' is 'no'"},
        {open + "<Producer key='a' path='b'>text</Producer>" + close, 3, "nothing but its attributes"},
        {open + "\n\n<Product key='a' path='b'/>" + close, 5, "<Product> where <Producer>"},
        {open + "stray" + close, 2, "text where <Producer>"},
        {open + "<Producer key='a' path='b'>\n\n", 4, "mismatch"},
        {open + "\xFF" + close, 1, "not UTF-8"},
        {"\xFF\xFE<\0", 1, "not UTF-8"},
    };
    for (const auto& c : cases) {
        const Registry registry("", c.text);
        EXPECT_EQ(K_ST_ERROR, registry.Status()) << c.text;
        EXPECT_EQ(nullptr, registry.Handle());
        EXPECT_THAT(last_error(), HasSubstr("registry.xml:" + std::to_string(c.line) + ": ")) << c.text;
        EXPECT_THAT(last_error(), HasSubstr(c.reason)) << c.text;
    }
}

TEST(Registry, FilesThatCannotBeReadAreInputErrors) {
    const TemporaryFolder folder;
    REGISTRY_HANDLE handle = reinterpret_cast<REGISTRY_HANDLE>(1);
    EXPECT_EQ(K_ST_IO, K_Registry_Open((folder / "missing.xml").c_str(), &handle));
    EXPECT_EQ(nullptr, handle);
    EXPECT_THAT(last_error(), HasSubstr("missing.xml': "));
    EXPECT_EQ(K_ST_IO, K_Registry_Open(folder.Path().c_str(), &handle));
    EXPECT_EQ(K_ST_IO, K_Registry_Open("", &handle));
    const std::string huge = folder.Write("huge.xml", "");
    std::filesystem::resize_file(huge, (64u << 20) + 1);
    EXPECT_EQ(K_ST_IO, K_Registry_Open(huge.c_str(), &handle));
    EXPECT_THAT(last_error(), HasSubstr("more than 67108864 bytes"));
}

TEST(Registry, WrongHandlesAndArgumentsGiveAStatus) {
    REGISTRY_HANDLE other = nullptr;
    EXPECT_EQ(K_ST_INVALID_PARAMETER, K_Registry_Open(nullptr, &other));
    EXPECT_EQ(K_ST_INVALID_PARAMETER, K_Registry_Open("x", nullptr));

    const Registry registry("<Producers><Producer key='A' path='a'/></Producers>");
    ELEMENT_LIST_HANDLE list = registry.List();
    uint32_t count = 7, size = 0;
    EXPECT_EQ(K_ST_INVALID_PARAMETER, K_Registry_OpenElementList(registry.Handle(), 2, &list));
    EXPECT_EQ(nullptr, list);
    EXPECT_EQ(K_ST_INVALID_PARAMETER, K_Registry_OpenElementList(registry.Handle(), K_REGISTRY_LIST_PRODUCERS, nullptr));
    EXPECT_EQ(K_ST_INVALID_PARAMETER, K_ElementList_GetElementNameByIndex(registry.List(), 1, nullptr, &size));
    EXPECT_EQ(K_ST_INVALID_PARAMETER, K_Registry_GetData(registry.Handle(), "A", 2, nullptr, &size));
    EXPECT_EQ(K_ST_INVALID_PARAMETER, K_Registry_GetData(registry.Handle(), nullptr, 1, nullptr, &size));
    EXPECT_EQ(K_ST_INVALID_PARAMETER, K_Registry_GetData(registry.Handle(), "A", 1, nullptr, nullptr));
    EXPECT_EQ(K_ST_INVALID_ID, K_Registry_GetData(registry.Handle(), "B", 1, nullptr, &size));
    EXPECT_THAT(last_error(), HasSubstr("'B'"));

    auto closed_early = std::make_unique<Registry>("");
    const REGISTRY_HANDLE stale = closed_early->Handle();
    const ELEMENT_LIST_HANDLE stale_list = closed_early->List();
    closed_early.reset();
    const Registry next("");  // takes the freed memory, and must not take the number
    for (REGISTRY_HANDLE handle : {REGISTRY_HANDLE(nullptr), stale, reinterpret_cast<REGISTRY_HANDLE>(registry.List())}) {
        EXPECT_EQ(K_ST_INVALID_HANDLE, K_Registry_Close(handle));
        EXPECT_EQ(K_ST_INVALID_HANDLE, K_Registry_OpenElementList(handle, K_REGISTRY_LIST_PRODUCERS, &list));
        EXPECT_EQ(K_ST_INVALID_HANDLE, K_Registry_GetData(handle, "A", 1, nullptr, &size));
    }
    for (ELEMENT_LIST_HANDLE handle :
         {ELEMENT_LIST_HANDLE(nullptr), stale_list, reinterpret_cast<ELEMENT_LIST_HANDLE>(registry.Handle())}) {
        EXPECT_EQ(K_ST_INVALID_HANDLE, K_ElementList_Close(handle));
        EXPECT_EQ(K_ST_INVALID_HANDLE, K_ElementList_GetNumOfElements(handle, &count));
        EXPECT_EQ(K_ST_INVALID_HANDLE, K_ElementList_GetElementNameByIndex(handle, 0, nullptr, &size));
    }
    EXPECT_EQ(7u, count);
}

TEST(Registry, TextsNeedTheirWholeRoom) {
    const Registry registry("<Producers><Producer key='KEY' path='a'/></Producers>");
    for (uint32_t capacity : {0u, 3u, 4u, 100u}) {
        char text[8] = "-------";
        uint32_t size = capacity;
        const K_STATUS_CODES expected = capacity < 4 ? K_ST_INVALID_BUFFER_SIZE : K_ST_SUCCESS;
        EXPECT_EQ(expected, K_Registry_GetData(registry.Handle(), "KEY", K_REGISTRY_DATA_KEY, text, &size));
        EXPECT_EQ(4u, size);
        EXPECT_STREQ(capacity < 4 ? "-------" : "KEY", text);
    }
    uint32_t size = 100;
    EXPECT_EQ(K_ST_INVALID_BUFFER_SIZE, K_ElementList_GetElementNameByIndex(registry.List(), 0, nullptr, &size));
    EXPECT_EQ(4u, size);
}

TEST(Registry, AListOutlivesItsRegistryAndAnErrorBelongsToItsThread) {
    const TemporaryFolder folder;
    const std::string path =
        folder.Write("r.xml", "<KivRegistry version='1'><Producers><Producer key='A' path='a'/></Producers></KivRegistry>");
    REGISTRY_HANDLE handle = nullptr;
    ELEMENT_LIST_HANDLE list = nullptr;
    ASSERT_EQ(K_ST_SUCCESS, K_Registry_Open(path.c_str(), &handle));
    ASSERT_EQ(K_ST_SUCCESS, K_Registry_OpenElementList(handle, K_REGISTRY_LIST_PRODUCERS, &list));
    ASSERT_EQ(K_ST_SUCCESS, K_Registry_Close(handle));
    uint32_t count = 0;
    EXPECT_EQ(K_ST_SUCCESS, K_ElementList_GetNumOfElements(list, &count));
    EXPECT_EQ(1u, count);
    EXPECT_EQ(K_ST_SUCCESS, K_ElementList_Close(list));
    EXPECT_EQ(K_ST_INVALID_HANDLE, K_ElementList_Close(list));

    std::thread([] {
        EXPECT_EQ("", last_error());
        K_Registry_Open("/nonexistent/of-another-thread", nullptr);
        EXPECT_NE("", last_error());
    }).join();
    EXPECT_THAT(last_error(), HasSubstr("handle"));
}

TEST(Registry, TheOneThatComesWithTheProjectListsTheSimulator) {
    REGISTRY_HANDLE handle = nullptr;
    ASSERT_EQ(K_ST_SUCCESS, K_Registry_Open(KIV_TEST_DATA "/Registry_64.xml", &handle)) << last_error();
    char text[4096];
    uint32_t size = sizeof text;
    EXPECT_EQ(K_ST_SUCCESS, K_Registry_GetData(handle, "KIV_SIM", K_REGISTRY_DATA_PATH, text, &size));
    EXPECT_THAT(text, HasSubstr("KivSim.cti"));
    EXPECT_EQ(K_ST_SUCCESS, K_Registry_Close(handle));
}

}  // namespace
