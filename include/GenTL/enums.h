/* The enumerations of the GenTL 1.5 C interface: error codes, info commands, flags.
 *
 * The type in a comment behind an info command is the INFO_DATATYPE that a producer reports for it.
 */
#ifndef GENTL_ENUMS_H
#define GENTL_ENUMS_H

#include "GenTL/types.h"

#ifdef __cplusplus
namespace GenTL {
extern "C" {
#endif

typedef int32_t GC_ERROR;
enum GC_ERROR_LIST {
    GC_ERR_SUCCESS = 0,
    GC_ERR_ERROR = -1001,             /* unspecified run-time failure */
    GC_ERR_NOT_INITIALIZED = -1002,   /* GCInitLib was not called; an event that is not registered */
    GC_ERR_NOT_IMPLEMENTED = -1003,   /* operation, command, event type or flag is not there */
    GC_ERR_RESOURCE_IN_USE = -1004,   /* already open, registered, queued, announced, started or stopped */
    GC_ERR_ACCESS_DENIED = -1005,     /* taken by another client; register not readable or not writable */
    GC_ERR_INVALID_HANDLE = -1006,    /* null, of another kind, or no longer open */
    GC_ERR_INVALID_ID = -1007,        /* no module of that name */
    GC_ERR_NO_DATA = -1008,           /* nothing to work on; not applicable to this buffer */
    GC_ERR_INVALID_PARAMETER = -1009, /* bad pointer or value out of range */
    GC_ERR_IO = -1010,                /* communication failed */
    GC_ERR_TIMEOUT = -1011,
    GC_ERR_ABORT = -1012,           /* a wait was ended by EventKill or GCUnregisterEvent */
    GC_ERR_INVALID_BUFFER = -1013,  /* too few buffers announced, or an unaligned one */
    GC_ERR_NOT_AVAILABLE = -1014,   /* exists, but not now */
    GC_ERR_INVALID_ADDRESS = -1015, /* outside the register space */
    GC_ERR_BUFFER_TOO_SMALL = -1016,
    GC_ERR_INVALID_INDEX = -1017,
    GC_ERR_PARSING_CHUNK_DATA = -1018,
    GC_ERR_INVALID_VALUE = -1019, /* a register does not take this value */
    GC_ERR_RESOURCE_EXHAUSTED = -1020,
    GC_ERR_OUT_OF_MEMORY = -1021,
    GC_ERR_BUSY = -1022,      /* something else is running that forbids it */
    GC_ERR_CUSTOM_ID = -10000 /* this and below: the producer's own */
};

typedef int32_t INFO_DATATYPE;
enum INFO_DATATYPE_LIST {
    INFO_DATATYPE_UNKNOWN = 0,
    INFO_DATATYPE_STRING = 1,     /* terminated */
    INFO_DATATYPE_STRINGLIST = 2, /* terminated strings and one more terminator */
    INFO_DATATYPE_INT16 = 3,
    INFO_DATATYPE_UINT16 = 4,
    INFO_DATATYPE_INT32 = 5,
    INFO_DATATYPE_UINT32 = 6,
    INFO_DATATYPE_INT64 = 7,
    INFO_DATATYPE_UINT64 = 8,
    INFO_DATATYPE_FLOAT64 = 9,
    INFO_DATATYPE_PTR = 10,
    INFO_DATATYPE_BOOL8 = 11,
    INFO_DATATYPE_SIZET = 12,
    INFO_DATATYPE_BUFFER = 13,
    INFO_DATATYPE_PTRDIFF = 14,
    INFO_DATATYPE_CUSTOM_ID = 1000
};

typedef int32_t TL_CHAR_ENCODING;
enum TL_CHAR_ENCODING_LIST { TL_CHAR_ENCODING_ASCII = 0, TL_CHAR_ENCODING_UTF8 = 1 };

typedef int32_t TL_INFO_CMD;
enum TL_INFO_CMD_LIST {
    TL_INFO_ID = 0,               /* STRING: unique among producers */
    TL_INFO_VENDOR = 1,           /* STRING */
    TL_INFO_MODEL = 2,            /* STRING */
    TL_INFO_VERSION = 3,          /* STRING */
    TL_INFO_TLTYPE = 4,           /* STRING */
    TL_INFO_NAME = 5,             /* STRING: file name with extension */
    TL_INFO_PATHNAME = 6,         /* STRING: file name with its whole path */
    TL_INFO_DISPLAYNAME = 7,      /* STRING */
    TL_INFO_CHAR_ENCODING = 8,    /* INT32: TL_CHAR_ENCODING */
    TL_INFO_GENTL_VER_MAJOR = 9,  /* UINT32 */
    TL_INFO_GENTL_VER_MINOR = 10, /* UINT32 */
    TL_INFO_CUSTOM_ID = 1000
};

typedef int32_t INTERFACE_INFO_CMD;
enum INTERFACE_INFO_CMD_LIST {
    INTERFACE_INFO_ID = 0,          /* STRING */
    INTERFACE_INFO_DISPLAYNAME = 1, /* STRING */
    INTERFACE_INFO_TLTYPE = 2,      /* STRING */
    INTERFACE_INFO_CUSTOM_ID = 1000
};

typedef int32_t DEVICE_ACCESS_FLAGS;
enum DEVICE_ACCESS_FLAGS_LIST {
    DEVICE_ACCESS_UNKNOWN = 0,
    DEVICE_ACCESS_NONE = 1, /* deprecated */
    DEVICE_ACCESS_READONLY = 2,
    DEVICE_ACCESS_CONTROL = 3,   /* this process reads and writes, others may read */
    DEVICE_ACCESS_EXCLUSIVE = 4, /* nobody else */
    DEVICE_ACCESS_CUSTOM_ID = 1000
};

typedef int32_t DEVICE_ACCESS_STATUS;
enum DEVICE_ACCESS_STATUS_LIST {
    DEVICE_ACCESS_STATUS_UNKNOWN = 0,
    DEVICE_ACCESS_STATUS_READWRITE = 1,      /* free */
    DEVICE_ACCESS_STATUS_READONLY = 2,       /* free for reading */
    DEVICE_ACCESS_STATUS_NOACCESS = 3,       /* seen, but not reachable */
    DEVICE_ACCESS_STATUS_BUSY = 4,           /* owned elsewhere */
    DEVICE_ACCESS_STATUS_OPEN_READWRITE = 5, /* opened here */
    DEVICE_ACCESS_STATUS_OPEN_READONLY = 6,  /* opened here */
    DEVICE_ACCESS_STATUS_CUSTOM_ID = 1000
};

typedef int32_t DEVICE_INFO_CMD;
enum DEVICE_INFO_CMD_LIST {
    DEVICE_INFO_ID = 0,                  /* STRING */
    DEVICE_INFO_VENDOR = 1,              /* STRING */
    DEVICE_INFO_MODEL = 2,               /* STRING */
    DEVICE_INFO_TLTYPE = 3,              /* STRING */
    DEVICE_INFO_DISPLAYNAME = 4,         /* STRING */
    DEVICE_INFO_ACCESS_STATUS = 5,       /* INT32: DEVICE_ACCESS_STATUS */
    DEVICE_INFO_USER_DEFINED_NAME = 6,   /* STRING */
    DEVICE_INFO_SERIAL_NUMBER = 7,       /* STRING */
    DEVICE_INFO_VERSION = 8,             /* STRING */
    DEVICE_INFO_TIMESTAMP_FREQUENCY = 9, /* UINT64: ticks per second */
    DEVICE_INFO_CUSTOM_ID = 1000
};

typedef int32_t STREAM_INFO_CMD;
enum STREAM_INFO_CMD_LIST {
    STREAM_INFO_ID = 0,                  /* STRING */
    STREAM_INFO_NUM_DELIVERED = 1,       /* UINT64: since the last start */
    STREAM_INFO_NUM_UNDERRUN = 2,        /* UINT64: frames lost for lack of a buffer, since open */
    STREAM_INFO_NUM_ANNOUNCED = 3,       /* SIZET */
    STREAM_INFO_NUM_QUEUED = 4,          /* SIZET: input pool and the buffer being filled */
    STREAM_INFO_NUM_AWAIT_DELIVERY = 5,  /* SIZET: output queue */
    STREAM_INFO_NUM_STARTED = 6,         /* UINT64: fills begun since open */
    STREAM_INFO_PAYLOAD_SIZE = 7,        /* SIZET */
    STREAM_INFO_IS_GRABBING = 8,         /* BOOL8 */
    STREAM_INFO_DEFINES_PAYLOADSIZE = 9, /* BOOL8: false means that the camera's PayloadSize counts */
    STREAM_INFO_TLTYPE = 10,             /* STRING */
    STREAM_INFO_NUM_CHUNKS_MAX = 11,     /* SIZET */
    STREAM_INFO_BUF_ANNOUNCE_MIN = 12,   /* SIZET: buffers that a start needs */
    STREAM_INFO_BUF_ALIGNMENT = 13,      /* SIZET: 1 for none */
    STREAM_INFO_CUSTOM_ID = 1000
};

typedef int32_t BUFFER_INFO_CMD;
enum BUFFER_INFO_CMD_LIST {
    BUFFER_INFO_BASE = 0,                        /* PTR */
    BUFFER_INFO_SIZE = 1,                        /* SIZET: as announced */
    BUFFER_INFO_USER_PTR = 2,                    /* PTR */
    BUFFER_INFO_TIMESTAMP = 3,                   /* UINT64: ticks of the device */
    BUFFER_INFO_NEW_DATA = 4,                    /* BOOL8: false for a buffer that a flush delivered */
    BUFFER_INFO_IS_QUEUED = 5,                   /* BOOL8 */
    BUFFER_INFO_IS_ACQUIRING = 6,                /* BOOL8 */
    BUFFER_INFO_IS_INCOMPLETE = 7,               /* BOOL8 */
    BUFFER_INFO_TLTYPE = 8,                      /* STRING */
    BUFFER_INFO_SIZE_FILLED = 9,                 /* SIZET */
    BUFFER_INFO_WIDTH = 10,                      /* SIZET: pixels */
    BUFFER_INFO_HEIGHT = 11,                     /* SIZET: lines */
    BUFFER_INFO_XOFFSET = 12,                    /* SIZET */
    BUFFER_INFO_YOFFSET = 13,                    /* SIZET */
    BUFFER_INFO_XPADDING = 14,                   /* SIZET: bytes per line */
    BUFFER_INFO_YPADDING = 15,                   /* SIZET: bytes */
    BUFFER_INFO_FRAMEID = 16,                    /* UINT64 */
    BUFFER_INFO_IMAGEPRESENT = 17,               /* BOOL8 */
    BUFFER_INFO_IMAGEOFFSET = 18,                /* SIZET: bytes from the base */
    BUFFER_INFO_PAYLOADTYPE = 19,                /* SIZET: PAYLOADTYPE_INFO_ID */
    BUFFER_INFO_PIXELFORMAT = 20,                /* UINT64 */
    BUFFER_INFO_PIXELFORMAT_NAMESPACE = 21,      /* UINT64: PIXELFORMAT_NAMESPACE_ID */
    BUFFER_INFO_DELIVERED_IMAGEHEIGHT = 22,      /* SIZET */
    BUFFER_INFO_DELIVERED_CHUNKPAYLOADSIZE = 23, /* SIZET */
    BUFFER_INFO_CHUNKLAYOUTID = 24,              /* UINT64 */
    BUFFER_INFO_FILENAME = 25,                   /* STRING */
    BUFFER_INFO_PIXEL_ENDIANNESS = 26,           /* INT32: PIXELENDIANNESS_ID */
    BUFFER_INFO_DATA_SIZE = 27,                  /* SIZET: what was meant to be written */
    BUFFER_INFO_TIMESTAMP_NS = 28,               /* UINT64 */
    BUFFER_INFO_DATA_LARGER_THAN_BUFFER = 29,    /* BOOL8 */
    BUFFER_INFO_CONTAINS_CHUNKDATA = 30,         /* BOOL8 */
    BUFFER_INFO_CUSTOM_ID = 1000
};

typedef int32_t BUFFER_PART_INFO_CMD;
enum BUFFER_PART_INFO_CMD_LIST {
    BUFFER_PART_INFO_BASE = 0,                   /* PTR */
    BUFFER_PART_INFO_DATA_SIZE = 1,              /* SIZET */
    BUFFER_PART_INFO_DATA_TYPE = 2,              /* SIZET: PARTDATATYPE_ID */
    BUFFER_PART_INFO_DATA_FORMAT = 3,            /* UINT64 */
    BUFFER_PART_INFO_DATA_FORMAT_NAMESPACE = 4,  /* UINT64 */
    BUFFER_PART_INFO_WIDTH = 5,                  /* SIZET */
    BUFFER_PART_INFO_HEIGHT = 6,                 /* SIZET */
    BUFFER_PART_INFO_XOFFSET = 7,                /* SIZET */
    BUFFER_PART_INFO_YOFFSET = 8,                /* SIZET */
    BUFFER_PART_INFO_XPADDING = 9,               /* SIZET */
    BUFFER_PART_INFO_SOURCE_ID = 10,             /* UINT64 */
    BUFFER_PART_INFO_DELIVERED_IMAGEHEIGHT = 11, /* SIZET */
    BUFFER_PART_INFO_CUSTOM_ID = 1000
};

/* These are not the numbers that a camera sends in its stream. */
typedef int32_t PAYLOADTYPE_INFO_ID;
enum PAYLOADTYPE_INFO_IDS {
    PAYLOAD_TYPE_UNKNOWN = 0,
    PAYLOAD_TYPE_IMAGE = 1,
    PAYLOAD_TYPE_RAW_DATA = 2,
    PAYLOAD_TYPE_FILE = 3,
    PAYLOAD_TYPE_CHUNK_DATA = 4, /* deprecated */
    PAYLOAD_TYPE_JPEG = 5,
    PAYLOAD_TYPE_JPEG2000 = 6,
    PAYLOAD_TYPE_H264 = 7,
    PAYLOAD_TYPE_CHUNK_ONLY = 8,
    PAYLOAD_TYPE_DEVICE_SPECIFIC = 9,
    PAYLOAD_TYPE_MULTI_PART = 10,
    PAYLOAD_TYPE_CUSTOM_ID = 1000
};

typedef int32_t PARTDATATYPE_ID;
enum PARTDATATYPE_IDS {
    PART_DATATYPE_UNKNOWN = 0,
    PART_DATATYPE_2D_IMAGE = 1,
    PART_DATATYPE_2D_PLANE_BIPLANAR = 2,
    PART_DATATYPE_2D_PLANE_TRIPLANAR = 3,
    PART_DATATYPE_2D_PLANE_QUADPLANAR = 4,
    PART_DATATYPE_3D_IMAGE = 5,
    PART_DATATYPE_3D_PLANE_BIPLANAR = 6,
    PART_DATATYPE_3D_PLANE_TRIPLANAR = 7,
    PART_DATATYPE_3D_PLANE_QUADPLANAR = 8,
    PART_DATATYPE_CONFIDENCE_MAP = 9,
    PART_DATATYPE_CUSTOM_ID = 1000
};

typedef int32_t PIXELFORMAT_NAMESPACE_ID;
enum PIXELFORMAT_NAMESPACE_IDS {
    PIXELFORMAT_NAMESPACE_UNKNOWN = 0,
    PIXELFORMAT_NAMESPACE_GEV = 1,
    PIXELFORMAT_NAMESPACE_IIDC = 2,
    PIXELFORMAT_NAMESPACE_PFNC_16BIT = 3,
    PIXELFORMAT_NAMESPACE_PFNC_32BIT = 4,
    PIXELFORMAT_NAMESPACE_CUSTOM_ID = 1000
};

typedef int32_t PIXELENDIANNESS_ID;
enum PIXELENDIANNESS_IDS { PIXELENDIANNESS_UNKNOWN = 0, PIXELENDIANNESS_LITTLE = 1, PIXELENDIANNESS_BIG = 2 };

typedef int32_t ACQ_QUEUE_TYPE;
enum ACQ_QUEUE_TYPE_LIST {
    ACQ_QUEUE_INPUT_TO_OUTPUT = 0,   /* input pool to output queue, as buffers without new data */
    ACQ_QUEUE_OUTPUT_DISCARD = 1,    /* empties the output queue */
    ACQ_QUEUE_ALL_TO_INPUT = 2,      /* output queue and buffers being filled back to the input pool */
    ACQ_QUEUE_UNQUEUED_TO_INPUT = 3, /* every buffer that is in no queue to the input pool */
    ACQ_QUEUE_ALL_DISCARD = 4,       /* every buffer out of every queue */
    ACQ_QUEUE_CUSTOM_ID = 1000
};

typedef int32_t ACQ_START_FLAGS;
enum ACQ_START_FLAGS_LIST { ACQ_START_FLAGS_DEFAULT = 0, ACQ_START_FLAGS_CUSTOM_ID = 1000 };

typedef int32_t ACQ_STOP_FLAGS;
enum ACQ_STOP_FLAGS_LIST {
    ACQ_STOP_FLAGS_DEFAULT = 0, /* finishes the buffer being filled */
    ACQ_STOP_FLAGS_KILL = 1,    /* delivers the buffer being filled as it is */
    ACQ_STOP_FLAGS_CUSTOM_ID = 1000
};

typedef int32_t EVENT_TYPE;
enum EVENT_TYPE_LIST {
    EVENT_ERROR = 0,              /* any module */
    EVENT_NEW_BUFFER = 1,         /* data stream */
    EVENT_FEATURE_INVALIDATE = 2, /* local device */
    EVENT_FEATURE_CHANGE = 3,     /* local device */
    EVENT_REMOTE_DEVICE = 4,      /* local device: the camera's own events */
    EVENT_FEATURE_DEVEVENT = 4,   /* the same, by its older name */
    EVENT_MODULE = 5,             /* any module */
    EVENT_CUSTOM_ID = 1000
};

typedef int32_t EVENT_INFO_CMD;
enum EVENT_INFO_CMD_LIST {
    EVENT_EVENT_TYPE = 0,         /* INT32: EVENT_TYPE */
    EVENT_NUM_IN_QUEUE = 1,       /* SIZET */
    EVENT_NUM_FIRED = 2,          /* UINT64: since registration */
    EVENT_SIZE_MAX = 3,           /* SIZET: most that EventGetData writes */
    EVENT_INFO_DATA_SIZE_MAX = 4, /* SIZET: most that EventGetDataInfo writes */
    EVENT_INFO_CUSTOM_ID = 1000
};

typedef int32_t EVENT_DATA_INFO_CMD;
enum EVENT_DATA_INFO_CMD_LIST {
    EVENT_DATA_ID = 0,    /* depends on the event type */
    EVENT_DATA_VALUE = 1, /* depends on the event type */
    EVENT_DATA_NUMID = 2, /* UINT64 */
    EVENT_DATA_CUSTOM_ID = 1000
};

typedef int32_t PORT_INFO_CMD;
enum PORT_INFO_CMD_LIST {
    PORT_INFO_ID = 0,            /* STRING */
    PORT_INFO_VENDOR = 1,        /* STRING */
    PORT_INFO_MODEL = 2,         /* STRING */
    PORT_INFO_TLTYPE = 3,        /* STRING */
    PORT_INFO_MODULE = 4,        /* STRING: TLSystem, TLInterface, TLDevice, TLDataStream, TLBuffer, Device */
    PORT_INFO_LITTLE_ENDIAN = 5, /* BOOL8 */
    PORT_INFO_BIG_ENDIAN = 6,    /* BOOL8 */
    PORT_INFO_ACCESS_READ = 7,   /* BOOL8 */
    PORT_INFO_ACCESS_WRITE = 8,  /* BOOL8 */
    PORT_INFO_ACCESS_NA = 9,     /* BOOL8 */
    PORT_INFO_ACCESS_NI = 10,    /* BOOL8 */
    PORT_INFO_VERSION = 11,      /* STRING */
    PORT_INFO_PORTNAME = 12,     /* STRING: the Port node of the description that this port serves */
    PORT_INFO_CUSTOM_ID = 1000
};

typedef int32_t URL_SCHEME_ID;
enum URL_SCHEME_IDS { URL_SCHEME_LOCAL = 0, URL_SCHEME_HTTP = 1, URL_SCHEME_FILE = 2, URL_SCHEME_CUSTOM_ID = 1000 };

typedef int32_t URL_INFO_CMD;
enum URL_INFO_CMD_LIST {
    URL_INFO_URL = 0,                   /* STRING */
    URL_INFO_SCHEMA_VER_MAJOR = 1,      /* INT32 */
    URL_INFO_SCHEMA_VER_MINOR = 2,      /* INT32 */
    URL_INFO_FILE_VER_MAJOR = 3,        /* INT32 */
    URL_INFO_FILE_VER_MINOR = 4,        /* INT32 */
    URL_INFO_FILE_VER_SUBMINOR = 5,     /* INT32 */
    URL_INFO_FILE_SHA1_HASH = 6,        /* BUFFER: 20 bytes */
    URL_INFO_FILE_REGISTER_ADDRESS = 7, /* UINT64 */
    URL_INFO_FILE_SIZE = 8,             /* UINT64 */
    URL_INFO_SCHEME = 9,                /* INT32: URL_SCHEME_ID */
    URL_INFO_FILENAME = 10,             /* STRING */
    URL_INFO_CUSTOM_ID = 1000
};

#ifdef __cplusplus
}  // extern "C"
}  // namespace GenTL
#endif

#endif
