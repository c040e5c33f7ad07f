// kiv xml: the GenICam description as it is, of the camera or of its producer.

#include <cstdio>
#include <fstream>

#include "camera_list.h"
#include "options.h"
#include "text.h"

namespace {

constexpr const char* kFooter =
    "Examples:\n"
    "  kiv xml 0 > camera.xml\n"
    "  kiv xml 0 -o camera.xml\n"
    "  kiv xml 0 --producer";

struct Arguments {
    std::string camera;
    std::string file;
    bool producer = false;
};

std::string description_of(TRANSPORT_LAYER_HANDLE layer, void* module) {
    // The size does not count the terminator that a copy needs; the third argument is only required not to be null.
    uint32_t size = 0;
    check(K_GenTL_Module_GetXmlString(layer, module, module, nullptr, &size), "K_GenTL_Module_GetXmlString");
    std::string text(static_cast<std::size_t>(size) + 1, '\0');
    size = static_cast<uint32_t>(text.size());
    check(K_GenTL_Module_GetXmlString(layer, module, module, text.data(), &size), "K_GenTL_Module_GetXmlString");
    return text.c_str();
}

void write_file(const std::string& path, const std::string& text) {
    std::ofstream file(path, std::ios::binary);
    file << text;
    file.close();
    if (!file) throw ToolError(ExitCode::kFailed, "\"" + path + "\" could not be written");
}

ExitCode xml(const Options& options, const Arguments& arguments) {
    Factory factory(options.registry);
    const Camera camera(factory, find_camera(factory, arguments.camera).id);
    TRANSPORT_LAYER_HANDLE layer = nullptr;
    check(K_Camera_GetTLHandle(camera.Get(), &layer), "K_Camera_GetTLHandle", camera.Id());
    void* module = arguments.producer ? static_cast<void*>(layer) : static_cast<void*>(camera.Get());
    const std::string text = description_of(layer, module);
    if (!arguments.file.empty()) {
        write_file(arguments.file, text);
    } else {
        std::fwrite(text.data(), 1, text.size(), stdout);
    }
    return ExitCode::kOk;
}

}  // namespace

void add_xml_command(CLI::App& app, Invocation& invocation) {
    CLI::App* command = app.add_subcommand("xml", "Print the description of a camera");
    command->footer(kFooter);
    auto arguments = std::make_shared<Arguments>();
    command->add_option("camera", arguments->camera, kCameraHelp)->required();
    command->add_option("-o,--output", arguments->file, "Write to a file instead")->type_name("FILE");
    command->add_flag("--producer", arguments->producer, "The description of the camera's producer instead");
    add_shared_options(*command, invocation.options, static_cast<unsigned>(Takes::kRegistry));
    command->callback(
        [&invocation, arguments] { invocation.run = [&invocation, arguments] { return xml(invocation.options, *arguments); }; });
}
