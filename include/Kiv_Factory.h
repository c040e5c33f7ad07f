/* Kiv_Factory: one flat C interface to every GenICam camera. An application includes this header and links one library.
 *
 *     FACTORY_HANDLE factory;
 *     CAM_HANDLE camera;
 *     char id[1024];
 *     uint32_t size = sizeof id;
 *     K_Factory_Open("", &factory);
 *     K_Factory_GetCameraIDByIndex(factory, 0, id, &size);
 *     K_Camera_Open_Proxy(factory, id, &camera);
 *     K_Camera_SetValueDouble(camera, "ExposureTime", 5000.0);
 *
 * The rules that all functions share (status codes, handles, order of checks, texts, threads) stand in kiv/types.h.
 */
#ifndef KIV_FACTORY_H
#define KIV_FACTORY_H

#include <kiv/camera.h>
#include <kiv/camera_link.h>
#include <kiv/chunk.h>
#include <kiv/data_stream.h>
#include <kiv/diagnostics.h>
#include <kiv/event.h>
#include <kiv/factory.h>
#include <kiv/gentl.h>
#include <kiv/image.h>
#include <kiv/imaging.h>
#include <kiv/node.h>
#include <kiv/pixel_format.h>
#include <kiv/settings.h>
#include <kiv/types.h>

#endif
