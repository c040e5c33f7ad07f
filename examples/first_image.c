/* The shortest way to images: the first camera, a fixed exposure time, ten images handed to a callback.
 * It needs one header and one library. What a real program adds is in tools/kiv. */
#define _POSIX_C_SOURCE 199309L
#include <Kiv_Factory.h>
#include <stdio.h>
#include <time.h>

/* Called on the stream's thread; the image belongs to the stream again when it returns. */
static void K_CALL on_image(void* context, K_IMAGE_INFO* image) {
    printf("%s: frame %llu, %u x %u, first byte %u\n", (const char*)context, (unsigned long long)image->frame_id, image->width,
           image->height, *(const unsigned char*)image->image_data);
}

/* Names what failed, and what the camera's feature layer said about it. */
static int failed(K_STATUS_CODES status, const char* call) {
    K_GC_ERROR_INFO why = {"", ""};
    if (status == K_ST_GC_ERROR) K_Factory_GetGenICamErrorInfo(&why);
    if (status != K_ST_SUCCESS) fprintf(stderr, "%s: status %d %s\n", call, (int)status, why.sDescription);
    return status != K_ST_SUCCESS;
}

static int grab(CAM_HANDLE camera, char* id) {
    const struct timespec nap = {0, 10000000};
    uint64_t delivered = 0;
    uint32_t size = sizeof delivered;
    int64_t payload = 0;
    THRD_HANDLE stream = NULL;
    if (failed(K_Camera_SetValueDouble(camera, "ExposureTime", 5000.0), "set ExposureTime")) return 1;
    if (failed(K_Camera_GetValueInt64(camera, "PayloadSize", &payload), "get PayloadSize")) return 1;
    if (failed(K_Image_OpenStream(camera, 0, id, (void (*)(void))on_image, &stream, (uint32_t)payload, 0), "open stream"))
        return 1;
    if (!failed(K_Camera_ExecuteCommand(camera, "AcquisitionStart"), "AcquisitionStart")) {
        while (delivered < 10 &&
               !failed(K_Image_GetStreamInfo(stream, 1 /* delivered images */, &delivered, &size), "stream info"))
            nanosleep(&nap, NULL);
        K_Camera_ExecuteCommand(camera, "AcquisitionStop");
    }
    K_Image_CloseStream(stream);
    return delivered < 10;
}

int main(void) {
    FACTORY_HANDLE factory = NULL;
    CAM_HANDLE camera = NULL;
    char id[1024];
    uint32_t size = sizeof id;
    int result = 1;
    if (!failed(K_Factory_Open("", &factory), "open factory") &&
        !failed(K_Factory_GetCameraIDByIndex(factory, 0, id, &size), "first camera") &&
        !failed(K_Camera_Open_Proxy(factory, id, &camera), "open camera")) {
        result = grab(camera, id);
        K_Camera_Close(camera);
    }
    if (factory != NULL) K_Factory_Close(factory);
    return result;
}
