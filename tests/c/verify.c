/* The interface from C: the layouts that callers in other languages rely on, and a program that links. */
#include <Kiv_Factory.h>

#include <stddef.h>
#include <stdio.h>
#include <string.h>

/* C99 has no static assertion: an array of negative size does not compile. */
#define HOLDS(name, condition) typedef char holds_##name[(condition) ? 1 : -1]
#define FIELD_AT(field, offset, size) \
    HOLDS(field, offsetof(K_IMAGE_INFO, field) == (offset) && sizeof(((K_IMAGE_INFO*)0)->field) == (size))

FIELD_AT(pixel_type, 0, 8);
FIELD_AT(width, 8, 4);
FIELD_AT(height, 12, 4);
FIELD_AT(image_size, 16, 4);
FIELD_AT(reserved, 20, 4);
FIELD_AT(image_data, 24, sizeof(void*));
FIELD_AT(timestamp, 32, 8);
FIELD_AT(producer_specific, 40, 4);
FIELD_AT(announced_buffers, 44, 4);
FIELD_AT(queued_buffers, 48, 4);
FIELD_AT(offset_x, 52, 4);
FIELD_AT(offset_y, 56, 4);
FIELD_AT(await_delivery, 60, 4);
FIELD_AT(frame_id, 64, 8);
FIELD_AT(padding_x, 72, 4);
FIELD_AT(pass_state, 76, 4);
FIELD_AT(chunk_layout_id, 80, 8);
HOLDS(error_record, sizeof(K_GC_ERROR_INFO) == 1152 && offsetof(K_GC_ERROR_INFO, sNodeName) == 1024);
HOLDS(boolean, sizeof(bool8_kiv) == 1);
HOLDS(status, sizeof(K_STATUS_CODES) == 4);
HOLDS(node_type, sizeof(K_NODE_TYPE) == 4);

int main(void) {
    char tag[8] = "";
    uint32_t size = sizeof tag;
    uint32_t count = 0;
    K_GC_ERROR_INFO record;
    memset(&record, 'x', sizeof record);
    /* The first thing that this process asks: no error has been yet. */
    if (K_Factory_GetGenICamErrorInfo(&record) != K_ST_SUCCESS || record.sDescription[0] || record.sNodeName[0]) return 4;
    if (K_Factory_GetInfo(3, tag, &size) != K_ST_SUCCESS || strcmp(tag, "KIV") != 0 || size != 4) return 1;
    if (K_Factory_GetNumOfCameras(NULL, &count) != K_ST_INVALID_HANDLE) return 2;
    if (K_Node_GetValueInt64(NULL, 1, NULL) != K_ST_INVALID_HANDLE) return 3;
    puts("linked and called from C");
    return 0;
}
