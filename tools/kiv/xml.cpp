// kiv xml: the GenICam description as it is, of the camera or of its producer.

#include <cstdio>

#include "camera_list.h"
#include "description.h"
#include "files.h"
#include "options.h"

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

ExitCode xml(const Options& options, const Arguments& arguments) {
    Factory factory(options.registry);
    const Camera camera(factory, find_camera(factory, arguments.camera).id);
    TRANSPORT_LAYER_HANDLE layer = nullptr;
    check(K_Camera_GetTLHandle(camera.Get(), &layer), "K_Camera_GetTLHandle", camera.Id());
    void* module = arguments.producer ? static_cast<void*>(layer) : static_cast<void*>(camera.Get());
    const std::string text = description_of(layer, module);
    if (!arguments.file.empty()) {
        write_text_file(arguments.file, text);
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
