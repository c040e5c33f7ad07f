// A second process: opens one camera, tells the value of one feature, leaves.   peek registry.xml camera-id feature
#include <Kiv_Factory.h>

#include <cstdio>

int main(int count, char** arguments) {
    if (count != 4) return 2;
    FACTORY_HANDLE factory = nullptr;
    CAM_HANDLE camera = nullptr;
    char text[256] = "";
    uint32_t size = sizeof text;
    auto status = K_Factory_Open(arguments[1], &factory);
    if (status == K_ST_SUCCESS) status = K_Camera_Open_Proxy(factory, arguments[2], &camera);
    if (status == K_ST_SUCCESS) status = K_Camera_GetValueString(camera, arguments[3], text, &size);
    if (status == K_ST_SUCCESS)
        std::printf("%s", text);
    else
        std::printf("status %d", status);
    if (camera) K_Camera_Close(camera);
    if (factory) K_Factory_Close(factory);
    return 0;
}
