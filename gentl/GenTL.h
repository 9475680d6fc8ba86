#pragma once

/*
 * The GenICam GenTL producer interface, version 1.5: every function, type, enumerator and structure of the C
 * interface between a producer (a .cti library) and its consumer. Enumerators that version 1.6 adds are here
 * as well, because a 1.5 consumer may meet them in answers; its functions are not.
 *
 * Compiles as C and as C++ (there in namespace GenTL). A producer exports the functions, which are declared
 * when GENTL_PRODUCER is defined; a consumer resolves them by name and calls them through the P... pointer
 * types.
 */

#ifdef __cplusplus
#include <cstddef>
#include <cstdint>
#else
#include <stddef.h>
#include <stdint.h>
#endif

#if defined(__i386__)
#define GC_CALLTYPE __attribute__((stdcall))
#else
#define GC_CALLTYPE
#endif

#if defined(__GNUC__)
#define GC_IMPORT_EXPORT __attribute__((visibility("default")))
#else
#define GC_IMPORT_EXPORT
#endif
#define GC_API GC_IMPORT_EXPORT GC_ERROR GC_CALLTYPE
#define GC_API_P(function) typedef GC_ERROR(GC_CALLTYPE* function)

#define GENTL_INVALID_HANDLE NULL
#define GENTL_INFINITE 0xFFFFFFFFFFFFFFFFULL

/* Texts that the ..._INFO_TLTYPE commands answer. */
#define TLTypeMixedName "Mixed"
#define TLTypeCustomName "Custom"
#define TLTypeGEVName "GEV"
#define TLTypeCLName "CL"
#define TLTypeIIDCName "IIDC"
#define TLTypeUVCName "UVC"
#define TLTypeCXPName "CXP"
#define TLTypeCLHSName "CLHS"
#define TLTypeU3VName "U3V"
#define TLTypeETHERNETName "Ethernet"
#define TLTypePCIName "PCI"

#ifdef __cplusplus
extern "C" {
namespace GenTL {
#endif

/* One byte on the wire: 0 is false, anything else is true. */
#ifdef __cplusplus
typedef bool bool8_t;
#else
typedef uint8_t bool8_t;
#endif

typedef void* TL_HANDLE;
typedef void* IF_HANDLE;
typedef void* DEV_HANDLE;
typedef void* DS_HANDLE;
typedef void* PORT_HANDLE;
typedef void* BUFFER_HANDLE;
typedef void* EVENTSRC_HANDLE;
typedef void* EVENT_HANDLE;

/* Results of every function; -10000 and below belong to the producer's maker. */
enum GC_ERROR_LIST {
    GC_ERR_SUCCESS = 0,
    GC_ERR_ERROR = -1001,
    GC_ERR_NOT_INITIALIZED = -1002,
    GC_ERR_NOT_IMPLEMENTED = -1003,
    GC_ERR_RESOURCE_IN_USE = -1004,
    GC_ERR_ACCESS_DENIED = -1005,
    GC_ERR_INVALID_HANDLE = -1006,
    GC_ERR_INVALID_ID = -1007,
    GC_ERR_NO_DATA = -1008,
    GC_ERR_INVALID_PARAMETER = -1009,
    GC_ERR_IO = -1010,
    GC_ERR_TIMEOUT = -1011,
    GC_ERR_ABORT = -1012,              /* since 1.1 */
    GC_ERR_INVALID_BUFFER = -1013,     /* since 1.1 */
    GC_ERR_NOT_AVAILABLE = -1014,      /* since 1.2 */
    GC_ERR_INVALID_ADDRESS = -1015,    /* since 1.3 */
    GC_ERR_BUFFER_TOO_SMALL = -1016,   /* since 1.4 */
    GC_ERR_INVALID_INDEX = -1017,      /* since 1.4 */
    GC_ERR_PARSING_CHUNK_DATA = -1018, /* since 1.4 */
    GC_ERR_INVALID_VALUE = -1019,      /* since 1.4 */
    GC_ERR_RESOURCE_EXHAUSTED = -1020, /* since 1.4 */
    GC_ERR_OUT_OF_MEMORY = -1021,      /* since 1.4 */
    GC_ERR_BUSY = -1022,               /* since 1.5 */
    GC_ERR_AMBIGUOUS = -1023,          /* since 1.6 */
    GC_ERR_CUSTOM_ID = -10000,
};
typedef int32_t GC_ERROR;

/* What an information command wrote; a STRING's size includes its terminating 0. */
enum INFO_DATATYPE_LIST {
    INFO_DATATYPE_UNKNOWN = 0,
    INFO_DATATYPE_STRING = 1,
    INFO_DATATYPE_STRINGLIST = 2,
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
    INFO_DATATYPE_PTRDIFF = 14, /* since 1.3 */
    INFO_DATATYPE_CUSTOM_ID = 1000,
};
typedef int32_t INFO_DATATYPE;

enum TL_CHAR_ENCODING_LIST {
    TL_CHAR_ENCODING_ASCII = 0,
    TL_CHAR_ENCODING_UTF8 = 1,
};
typedef int32_t TL_CHAR_ENCODING;

enum TL_INFO_CMD_LIST {
    TL_INFO_ID = 0,               /* STRING */
    TL_INFO_VENDOR = 1,           /* STRING */
    TL_INFO_MODEL = 2,            /* STRING */
    TL_INFO_VERSION = 3,          /* STRING */
    TL_INFO_TLTYPE = 4,           /* STRING */
    TL_INFO_NAME = 5,             /* STRING */
    TL_INFO_PATHNAME = 6,         /* STRING */
    TL_INFO_DISPLAYNAME = 7,      /* STRING */
    TL_INFO_CHAR_ENCODING = 8,    /* INT32, since 1.4 */
    TL_INFO_GENTL_VER_MAJOR = 9,  /* UINT32, since 1.5 */
    TL_INFO_GENTL_VER_MINOR = 10, /* UINT32, since 1.5 */
    TL_INFO_CUSTOM_ID = 1000,
};
typedef int32_t TL_INFO_CMD;

enum INTERFACE_INFO_CMD_LIST {
    INTERFACE_INFO_ID = 0,          /* STRING */
    INTERFACE_INFO_DISPLAYNAME = 1, /* STRING */
    INTERFACE_INFO_TLTYPE = 2,      /* STRING */
    INTERFACE_INFO_CUSTOM_ID = 1000,
};
typedef int32_t INTERFACE_INFO_CMD;

enum DEVICE_ACCESS_FLAGS_LIST {
    DEVICE_ACCESS_UNKNOWN = 0,
    DEVICE_ACCESS_NONE = 1,
    DEVICE_ACCESS_READONLY = 2,
    DEVICE_ACCESS_CONTROL = 3,
    DEVICE_ACCESS_EXCLUSIVE = 4,
    DEVICE_ACCESS_CUSTOM_ID = 1000,
};
typedef int32_t DEVICE_ACCESS_FLAGS;

enum DEVICE_ACCESS_STATUS_LIST {
    DEVICE_ACCESS_STATUS_UNKNOWN = 0,
    DEVICE_ACCESS_STATUS_READWRITE = 1,
    DEVICE_ACCESS_STATUS_READONLY = 2,
    DEVICE_ACCESS_STATUS_NOACCESS = 3,
    DEVICE_ACCESS_STATUS_BUSY = 4,           /* since 1.5 */
    DEVICE_ACCESS_STATUS_OPEN_READWRITE = 5, /* since 1.5 */
    DEVICE_ACCESS_STATUS_OPEN_READONLY = 6,  /* since 1.5 */
    DEVICE_ACCESS_STATUS_CUSTOM_ID = 1000,
};
typedef int32_t DEVICE_ACCESS_STATUS;

enum DEVICE_INFO_CMD_LIST {
    DEVICE_INFO_ID = 0,                  /* STRING */
    DEVICE_INFO_VENDOR = 1,              /* STRING */
    DEVICE_INFO_MODEL = 2,               /* STRING */
    DEVICE_INFO_TLTYPE = 3,              /* STRING */
    DEVICE_INFO_DISPLAYNAME = 4,         /* STRING */
    DEVICE_INFO_ACCESS_STATUS = 5,       /* INT32 */
    DEVICE_INFO_USER_DEFINED_NAME = 6,   /* STRING, since 1.4 */
    DEVICE_INFO_SERIAL_NUMBER = 7,       /* STRING, since 1.4 */
    DEVICE_INFO_VERSION = 8,             /* STRING, since 1.4 */
    DEVICE_INFO_TIMESTAMP_FREQUENCY = 9, /* UINT64, since 1.4 */
    DEVICE_INFO_CUSTOM_ID = 1000,
};
typedef int32_t DEVICE_INFO_CMD;

enum ACQ_STOP_FLAGS_LIST {
    ACQ_STOP_FLAGS_DEFAULT = 0,
    ACQ_STOP_FLAGS_KILL = 1,
    ACQ_STOP_FLAGS_CUSTOM_ID = 1000,
};
typedef int32_t ACQ_STOP_FLAGS;

enum ACQ_START_FLAGS_LIST {
    ACQ_START_FLAGS_DEFAULT = 0,
    ACQ_START_FLAGS_CUSTOM_ID = 1000,
};
typedef int32_t ACQ_START_FLAGS;

enum ACQ_QUEUE_TYPE_LIST {
    ACQ_QUEUE_INPUT_TO_OUTPUT = 0,
    ACQ_QUEUE_OUTPUT_DISCARD = 1,
    ACQ_QUEUE_ALL_TO_INPUT = 2,
    ACQ_QUEUE_UNQUEUED_TO_INPUT = 3,
    ACQ_QUEUE_ALL_DISCARD = 4,
    ACQ_QUEUE_CUSTOM_ID = 1000,
};
typedef int32_t ACQ_QUEUE_TYPE;

enum STREAM_INFO_CMD_LIST {
    STREAM_INFO_ID = 0,                         /* STRING */
    STREAM_INFO_NUM_DELIVERED = 1,              /* UINT64 */
    STREAM_INFO_NUM_UNDERRUN = 2,               /* UINT64 */
    STREAM_INFO_NUM_ANNOUNCED = 3,              /* SIZET */
    STREAM_INFO_NUM_QUEUED = 4,                 /* SIZET */
    STREAM_INFO_NUM_AWAIT_DELIVERY = 5,         /* SIZET */
    STREAM_INFO_NUM_STARTED = 6,                /* UINT64 */
    STREAM_INFO_PAYLOAD_SIZE = 7,               /* SIZET */
    STREAM_INFO_IS_GRABBING = 8,                /* BOOL8 */
    STREAM_INFO_DEFINES_PAYLOADSIZE = 9,        /* BOOL8 */
    STREAM_INFO_TLTYPE = 10,                    /* STRING */
    STREAM_INFO_NUM_CHUNKS_MAX = 11,            /* SIZET, since 1.3 */
    STREAM_INFO_BUF_ANNOUNCE_MIN = 12,          /* SIZET, since 1.3 */
    STREAM_INFO_BUF_ALIGNMENT = 13,             /* SIZET, since 1.3 */
    STREAM_INFO_FLOW_TABLE = 14,                /* BUFFER, since 1.6 */
    STREAM_INFO_GENDC_PREFETCH_DESCRIPTOR = 15, /* BUFFER, since 1.6 */
    STREAM_INFO_CUSTOM_ID = 1000,
};
typedef int32_t STREAM_INFO_CMD;

enum BUFFER_INFO_CMD_LIST {
    BUFFER_INFO_BASE = 0,                        /* PTR */
    BUFFER_INFO_SIZE = 1,                        /* SIZET */
    BUFFER_INFO_USER_PTR = 2,                    /* PTR */
    BUFFER_INFO_TIMESTAMP = 3,                   /* UINT64 */
    BUFFER_INFO_NEW_DATA = 4,                    /* BOOL8 */
    BUFFER_INFO_IS_QUEUED = 5,                   /* BOOL8 */
    BUFFER_INFO_IS_ACQUIRING = 6,                /* BOOL8 */
    BUFFER_INFO_IS_INCOMPLETE = 7,               /* BOOL8 */
    BUFFER_INFO_TLTYPE = 8,                      /* STRING */
    BUFFER_INFO_SIZE_FILLED = 9,                 /* SIZET */
    BUFFER_INFO_WIDTH = 10,                      /* SIZET, since 1.2 */
    BUFFER_INFO_HEIGHT = 11,                     /* SIZET, since 1.2 */
    BUFFER_INFO_XOFFSET = 12,                    /* SIZET, since 1.2 */
    BUFFER_INFO_YOFFSET = 13,                    /* SIZET, since 1.2 */
    BUFFER_INFO_XPADDING = 14,                   /* SIZET, since 1.2 */
    BUFFER_INFO_YPADDING = 15,                   /* SIZET, since 1.2 */
    BUFFER_INFO_FRAMEID = 16,                    /* UINT64, since 1.2 */
    BUFFER_INFO_IMAGEPRESENT = 17,               /* BOOL8, since 1.2 */
    BUFFER_INFO_IMAGEOFFSET = 18,                /* SIZET, since 1.2 */
    BUFFER_INFO_PAYLOADTYPE = 19,                /* SIZET, since 1.2 */
    BUFFER_INFO_PIXELFORMAT = 20,                /* UINT64, since 1.2 */
    BUFFER_INFO_PIXELFORMAT_NAMESPACE = 21,      /* UINT64, since 1.2 */
    BUFFER_INFO_DELIVERED_IMAGEHEIGHT = 22,      /* SIZET, since 1.2 */
    BUFFER_INFO_DELIVERED_CHUNKPAYLOADSIZE = 23, /* SIZET, since 1.2 */
    BUFFER_INFO_CHUNKLAYOUTID = 24,              /* UINT64, since 1.2 */
    BUFFER_INFO_FILENAME = 25,                   /* STRING, since 1.2 */
    BUFFER_INFO_PIXEL_ENDIANNESS = 26,           /* INT32, since 1.4 */
    BUFFER_INFO_DATA_SIZE = 27,                  /* SIZET, since 1.4 */
    BUFFER_INFO_TIMESTAMP_NS = 28,               /* UINT64, since 1.4 */
    BUFFER_INFO_DATA_LARGER_THAN_BUFFER = 29,    /* BOOL8, since 1.4 */
    BUFFER_INFO_CONTAINS_CHUNKDATA = 30,         /* BOOL8, since 1.4 */
    BUFFER_INFO_IS_COMPOSITE = 31,               /* BOOL8, since 1.6 */
    BUFFER_INFO_CUSTOM_ID = 1000,
};
typedef int32_t BUFFER_INFO_CMD;

enum BUFFER_PART_INFO_CMD_LIST {
    BUFFER_PART_INFO_BASE = 0,                   /* PTR */
    BUFFER_PART_INFO_DATA_SIZE = 1,              /* SIZET */
    BUFFER_PART_INFO_DATA_TYPE = 2,              /* SIZET */
    BUFFER_PART_INFO_DATA_FORMAT = 3,            /* UINT64 */
    BUFFER_PART_INFO_DATA_FORMAT_NAMESPACE = 4,  /* UINT64 */
    BUFFER_PART_INFO_WIDTH = 5,                  /* SIZET */
    BUFFER_PART_INFO_HEIGHT = 6,                 /* SIZET */
    BUFFER_PART_INFO_XOFFSET = 7,                /* SIZET */
    BUFFER_PART_INFO_YOFFSET = 8,                /* SIZET */
    BUFFER_PART_INFO_XPADDING = 9,               /* SIZET */
    BUFFER_PART_INFO_SOURCE_ID = 10,             /* UINT64 */
    BUFFER_PART_INFO_DELIVERED_IMAGEHEIGHT = 11, /* SIZET */
    BUFFER_PART_INFO_REGION_ID = 12,             /* UINT64, since 1.6 */
    BUFFER_PART_INFO_DATA_PURPOSE_ID = 13,       /* UINT64, since 1.6 */
    BUFFER_PART_INFO_CUSTOM_ID = 1000,
};
typedef int32_t BUFFER_PART_INFO_CMD;

enum PAYLOADTYPE_INFO_IDS {
    PAYLOAD_TYPE_UNKNOWN = 0,         /* since 1.2 */
    PAYLOAD_TYPE_IMAGE = 1,           /* since 1.2 */
    PAYLOAD_TYPE_RAW_DATA = 2,        /* since 1.2 */
    PAYLOAD_TYPE_FILE = 3,            /* since 1.2 */
    PAYLOAD_TYPE_CHUNK_DATA = 4,      /* since 1.2 */
    PAYLOAD_TYPE_JPEG = 5,            /* since 1.4 */
    PAYLOAD_TYPE_JPEG2000 = 6,        /* since 1.4 */
    PAYLOAD_TYPE_H264 = 7,            /* since 1.4 */
    PAYLOAD_TYPE_CHUNK_ONLY = 8,      /* since 1.4 */
    PAYLOAD_TYPE_DEVICE_SPECIFIC = 9, /* since 1.4 */
    PAYLOAD_TYPE_MULTI_PART = 10,     /* since 1.5 */
    PAYLOAD_TYPE_GENDC = 11,          /* since 1.6 */
    PAYLOAD_TYPE_CUSTOM_ID = 1000,
};
typedef int32_t PAYLOADTYPE_INFO_ID;

enum PIXELFORMAT_NAMESPACE_IDS {
    PIXELFORMAT_NAMESPACE_UNKNOWN = 0,    /* since 1.2 */
    PIXELFORMAT_NAMESPACE_GEV = 1,        /* since 1.2 */
    PIXELFORMAT_NAMESPACE_IIDC = 2,       /* since 1.2 */
    PIXELFORMAT_NAMESPACE_PFNC_16BIT = 3, /* since 1.4 */
    PIXELFORMAT_NAMESPACE_PFNC_32BIT = 4, /* since 1.4 */
    PIXELFORMAT_NAMESPACE_CUSTOM_ID = 1000,
};
typedef int32_t PIXELFORMAT_NAMESPACE_ID;

enum PIXELENDIANNESS_IDS {
    PIXELENDIANNESS_UNKNOWN = 0, /* since 1.4 */
    PIXELENDIANNESS_LITTLE = 1,  /* since 1.4 */
    PIXELENDIANNESS_BIG = 2,     /* since 1.4 */
};
typedef int32_t PIXELENDIANNESS_ID;

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
    PART_DATATYPE_JPEG = 10,     /* since 1.6 */
    PART_DATATYPE_JPEG2000 = 11, /* since 1.6 */
    PART_DATATYPE_CUSTOM_ID = 1000,
};
typedef int32_t PARTDATATYPE_ID;

enum PORT_INFO_CMD_LIST {
    PORT_INFO_ID = 0,            /* STRING */
    PORT_INFO_VENDOR = 1,        /* STRING */
    PORT_INFO_MODEL = 2,         /* STRING */
    PORT_INFO_TLTYPE = 3,        /* STRING */
    PORT_INFO_MODULE = 4,        /* STRING */
    PORT_INFO_LITTLE_ENDIAN = 5, /* BOOL8 */
    PORT_INFO_BIG_ENDIAN = 6,    /* BOOL8 */
    PORT_INFO_ACCESS_READ = 7,   /* BOOL8 */
    PORT_INFO_ACCESS_WRITE = 8,  /* BOOL8 */
    PORT_INFO_ACCESS_NA = 9,     /* BOOL8 */
    PORT_INFO_ACCESS_NI = 10,    /* BOOL8 */
    PORT_INFO_VERSION = 11,      /* STRING */
    PORT_INFO_PORTNAME = 12,     /* STRING */
    PORT_INFO_CUSTOM_ID = 1000,
};
typedef int32_t PORT_INFO_CMD;

enum URL_SCHEME_IDS {
    URL_SCHEME_LOCAL = 0,
    URL_SCHEME_HTTP = 1,
    URL_SCHEME_FILE = 2,
    URL_SCHEME_CUSTOM_ID = 1000,
};
typedef int32_t URL_SCHEME_ID;

enum URL_INFO_CMD_LIST {
    URL_INFO_URL = 0,                   /* STRING, since 1.1 */
    URL_INFO_SCHEMA_VER_MAJOR = 1,      /* INT32, since 1.1 */
    URL_INFO_SCHEMA_VER_MINOR = 2,      /* INT32, since 1.1 */
    URL_INFO_FILE_VER_MAJOR = 3,        /* INT32, since 1.1 */
    URL_INFO_FILE_VER_MINOR = 4,        /* INT32, since 1.1 */
    URL_INFO_FILE_VER_SUBMINOR = 5,     /* INT32, since 1.1 */
    URL_INFO_FILE_SHA1_HASH = 6,        /* BUFFER, since 1.4 */
    URL_INFO_FILE_REGISTER_ADDRESS = 7, /* UINT64, since 1.5 */
    URL_INFO_FILE_SIZE = 8,             /* UINT64, since 1.5 */
    URL_INFO_SCHEME = 9,                /* INT32, since 1.5 */
    URL_INFO_FILENAME = 10,             /* STRING, since 1.5 */
    URL_INFO_CUSTOM_ID = 1000,
};
typedef int32_t URL_INFO_CMD;

enum EVENT_TYPE_LIST {
    EVENT_ERROR = 0,
    EVENT_NEW_BUFFER = 1,
    EVENT_FEATURE_INVALIDATE = 2,
    EVENT_FEATURE_CHANGE = 3,
    EVENT_REMOTE_DEVICE = 4,
    EVENT_MODULE = 5, /* since 1.4 */
    EVENT_CUSTOM_ID = 1000,
};
typedef int32_t EVENT_TYPE;

enum EVENT_INFO_CMD_LIST {
    EVENT_EVENT_TYPE = 0,         /* INT32 */
    EVENT_NUM_IN_QUEUE = 1,       /* SIZET */
    EVENT_NUM_FIRED = 2,          /* UINT64 */
    EVENT_SIZE_MAX = 3,           /* SIZET, since 1.2 */
    EVENT_INFO_DATA_SIZE_MAX = 4, /* SIZET, since 1.2 */
    EVENT_INFO_CUSTOM_ID = 1000,
};
typedef int32_t EVENT_INFO_CMD;

enum EVENT_DATA_INFO_CMD_LIST {
    EVENT_DATA_ID = 0,    /* per event type */
    EVENT_DATA_VALUE = 1, /* per event type */
    EVENT_DATA_NUMID = 2, /* UINT64, since 1.3 */
    EVENT_DATA_CUSTOM_ID = 1000,
};
typedef int32_t EVENT_DATA_INFO_CMD;

enum FLOW_INFO_CMD_LIST {
    FLOW_INFO_SIZE = 0,         /* SIZET, since 1.6 */
    FLOW_INFO_CUSTOM_ID = 1000, /* since 1.6 */
};
typedef int32_t FLOW_INFO_CMD;

enum SEGMENT_INFO_CMD_LIST {
    SEGMENT_INFO_BASE = 0,          /* PTR, since 1.6 */
    SEGMENT_INFO_SIZE = 1,          /* SIZET, since 1.6 */
    SEGMENT_INFO_IS_INCOMPLETE = 2, /* BOOL8, since 1.6 */
    SEGMENT_INFO_SIZE_FILLED = 3,   /* SIZET, since 1.6 */
    SEGMENT_INFO_DATA_SIZE = 4,     /* SIZET, since 1.6 */
    SEGMENT_INFO_CUSTOM_ID = 1000,  /* since 1.6 */
};
typedef int32_t SEGMENT_INFO_CMD;

#pragma pack(push, 1)

/* What EventGetData writes for EVENT_NEW_BUFFER. */
typedef struct S_EVENT_NEW_BUFFER {
    BUFFER_HANDLE BufferHandle;
    void* pUserPointer;
} EVENT_NEW_BUFFER_DATA;

/* One access of GCReadPortStacked and GCWritePortStacked. */
typedef struct S_PORT_REGISTER_STACK_ENTRY {
    uint64_t Address;
    void* pBuffer;
    size_t Size;
} PORT_REGISTER_STACK_ENTRY;

/* Where one chunk lies, counted in bytes from the start of the buffer. */
typedef struct S_SINGLE_CHUNK_DATA {
    uint64_t ChunkID;
    ptrdiff_t ChunkOffset;
    size_t ChunkLength;
} SINGLE_CHUNK_DATA;

#pragma pack(pop)

#ifdef GENTL_PRODUCER
GC_API GCInitLib(void);
GC_API GCCloseLib(void);
GC_API GCGetInfo(TL_INFO_CMD iInfoCmd, INFO_DATATYPE* piType, void* pBuffer, size_t* piSize);
GC_API GCGetLastError(GC_ERROR* piErrorCode, char* sText, size_t* piSize);
GC_API TLOpen(TL_HANDLE* phSystem);
GC_API TLClose(TL_HANDLE hSystem);
GC_API TLGetInfo(TL_HANDLE hSystem, TL_INFO_CMD iInfoCmd, INFO_DATATYPE* piType, void* pBuffer,
                 size_t* piSize);
GC_API TLUpdateInterfaceList(TL_HANDLE hSystem, bool8_t* pbChanged, uint64_t iTimeout);
GC_API TLGetNumInterfaces(TL_HANDLE hSystem, uint32_t* piCount);
GC_API TLGetInterfaceID(TL_HANDLE hSystem, uint32_t iIndex, char* sText, size_t* piSize);
GC_API TLGetInterfaceInfo(TL_HANDLE hSystem, const char* sIfaceID, INTERFACE_INFO_CMD iInfoCmd,
                          INFO_DATATYPE* piType, void* pBuffer, size_t* piSize);
GC_API TLOpenInterface(TL_HANDLE hSystem, const char* sIfaceID, IF_HANDLE* phIface);
GC_API IFClose(IF_HANDLE hIface);
GC_API IFGetInfo(IF_HANDLE hIface, INTERFACE_INFO_CMD iInfoCmd, INFO_DATATYPE* piType, void* pBuffer,
                 size_t* piSize);
GC_API IFGetParentTL(IF_HANDLE hIface, TL_HANDLE* phSystem);
GC_API IFUpdateDeviceList(IF_HANDLE hIface, bool8_t* pbChanged, uint64_t iTimeout);
GC_API IFGetNumDevices(IF_HANDLE hIface, uint32_t* piCount);
GC_API IFGetDeviceID(IF_HANDLE hIface, uint32_t iIndex, char* sText, size_t* piSize);
GC_API IFGetDeviceInfo(IF_HANDLE hIface, const char* sDeviceID, DEVICE_INFO_CMD iInfoCmd,
                       INFO_DATATYPE* piType, void* pBuffer, size_t* piSize);
GC_API IFOpenDevice(IF_HANDLE hIface, const char* sDeviceID, DEVICE_ACCESS_FLAGS iOpenFlags,
                    DEV_HANDLE* phDevice);
GC_API DevClose(DEV_HANDLE hDev);
GC_API DevGetInfo(DEV_HANDLE hDev, DEVICE_INFO_CMD iInfoCmd, INFO_DATATYPE* piType, void* pBuffer,
                  size_t* piSize);
GC_API DevGetParentIF(DEV_HANDLE hDev, IF_HANDLE* phIface);
GC_API DevGetPort(DEV_HANDLE hDev, PORT_HANDLE* phRemotePort);
GC_API DevGetNumDataStreams(DEV_HANDLE hDev, uint32_t* piCount);
GC_API DevGetDataStreamID(DEV_HANDLE hDev, uint32_t iIndex, char* sText, size_t* piSize);
GC_API DevOpenDataStream(DEV_HANDLE hDev, const char* sDataStreamID, DS_HANDLE* phDataStream);
GC_API DSClose(DS_HANDLE hDataStream);
GC_API DSGetInfo(DS_HANDLE hDataStream, STREAM_INFO_CMD iInfoCmd, INFO_DATATYPE* piType, void* pBuffer,
                 size_t* piSize);
GC_API DSGetParentDev(DS_HANDLE hDataStream, DEV_HANDLE* phDevice);
GC_API DSAnnounceBuffer(DS_HANDLE hDataStream, void* pBuffer, size_t iSize, void* pUserPointer,
                        BUFFER_HANDLE* phBuffer);
GC_API DSAllocAndAnnounceBuffer(DS_HANDLE hDataStream, size_t iSize, void* pUserPointer,
                                BUFFER_HANDLE* phBuffer);
GC_API DSRevokeBuffer(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer, void** ppBuffer, void** ppUserPointer);
GC_API DSQueueBuffer(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer);
GC_API DSFlushQueue(DS_HANDLE hDataStream, ACQ_QUEUE_TYPE iOperation);
GC_API DSGetBufferID(DS_HANDLE hDataStream, uint32_t iIndex, BUFFER_HANDLE* phBuffer);
GC_API DSStartAcquisition(DS_HANDLE hDataStream, ACQ_START_FLAGS iFlags, uint64_t iNumToAcquire);
GC_API DSStopAcquisition(DS_HANDLE hDataStream, ACQ_STOP_FLAGS iFlags);
GC_API DSGetBufferInfo(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer, BUFFER_INFO_CMD iInfoCmd,
                       INFO_DATATYPE* piType, void* pBuffer, size_t* piSize);
GC_API DSGetBufferChunkData(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer, SINGLE_CHUNK_DATA* pChunkData,
                            size_t* piCount);
GC_API DSGetNumBufferParts(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer, uint32_t* piCount);
GC_API DSGetBufferPartInfo(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer, uint32_t iPartIndex,
                           BUFFER_PART_INFO_CMD iInfoCmd, INFO_DATATYPE* piType, void* pBuffer,
                           size_t* piSize);
GC_API GCGetPortInfo(PORT_HANDLE hPort, PORT_INFO_CMD iInfoCmd, INFO_DATATYPE* piType, void* pBuffer,
                     size_t* piSize);
GC_API GCGetNumPortURLs(PORT_HANDLE hPort, uint32_t* piCount);
GC_API GCGetPortURLInfo(PORT_HANDLE hPort, uint32_t iURLIndex, URL_INFO_CMD iInfoCmd, INFO_DATATYPE* piType,
                        void* pBuffer, size_t* piSize);
GC_API GCGetPortURL(PORT_HANDLE hPort, char* sText, size_t* piSize);
GC_API GCReadPort(PORT_HANDLE hPort, uint64_t iAddress, void* pBuffer, size_t* piSize);
GC_API GCWritePort(PORT_HANDLE hPort, uint64_t iAddress, const void* pBuffer, size_t* piSize);
GC_API GCReadPortStacked(PORT_HANDLE hPort, PORT_REGISTER_STACK_ENTRY* pEntries, size_t* piCount);
GC_API GCWritePortStacked(PORT_HANDLE hPort, PORT_REGISTER_STACK_ENTRY* pEntries, size_t* piCount);
GC_API GCRegisterEvent(EVENTSRC_HANDLE hEventSrc, EVENT_TYPE iEventID, EVENT_HANDLE* phEvent);
GC_API GCUnregisterEvent(EVENTSRC_HANDLE hEventSrc, EVENT_TYPE iEventID);
GC_API EventGetData(EVENT_HANDLE hEvent, void* pBuffer, size_t* piSize, uint64_t iTimeout);
GC_API EventGetDataInfo(EVENT_HANDLE hEvent, const void* pInBuffer, size_t iInSize,
                        EVENT_DATA_INFO_CMD iInfoCmd, INFO_DATATYPE* piType, void* pOutBuffer,
                        size_t* piOutSize);
GC_API EventGetInfo(EVENT_HANDLE hEvent, EVENT_INFO_CMD iInfoCmd, INFO_DATATYPE* piType, void* pBuffer,
                    size_t* piSize);
GC_API EventFlush(EVENT_HANDLE hEvent);
GC_API EventKill(EVENT_HANDLE hEvent);
#endif

GC_API_P(PGCInitLib)(void);
GC_API_P(PGCCloseLib)(void);
GC_API_P(PGCGetInfo)(TL_INFO_CMD iInfoCmd, INFO_DATATYPE* piType, void* pBuffer, size_t* piSize);
GC_API_P(PGCGetLastError)(GC_ERROR* piErrorCode, char* sText, size_t* piSize);
GC_API_P(PTLOpen)(TL_HANDLE* phSystem);
GC_API_P(PTLClose)(TL_HANDLE hSystem);
GC_API_P(PTLGetInfo)
(TL_HANDLE hSystem, TL_INFO_CMD iInfoCmd, INFO_DATATYPE* piType, void* pBuffer, size_t* piSize);
GC_API_P(PTLUpdateInterfaceList)(TL_HANDLE hSystem, bool8_t* pbChanged, uint64_t iTimeout);
GC_API_P(PTLGetNumInterfaces)(TL_HANDLE hSystem, uint32_t* piCount);
GC_API_P(PTLGetInterfaceID)(TL_HANDLE hSystem, uint32_t iIndex, char* sText, size_t* piSize);
GC_API_P(PTLGetInterfaceInfo)
(TL_HANDLE hSystem, const char* sIfaceID, INTERFACE_INFO_CMD iInfoCmd, INFO_DATATYPE* piType, void* pBuffer,
 size_t* piSize);
GC_API_P(PTLOpenInterface)(TL_HANDLE hSystem, const char* sIfaceID, IF_HANDLE* phIface);
GC_API_P(PIFClose)(IF_HANDLE hIface);
GC_API_P(PIFGetInfo)
(IF_HANDLE hIface, INTERFACE_INFO_CMD iInfoCmd, INFO_DATATYPE* piType, void* pBuffer, size_t* piSize);
GC_API_P(PIFGetParentTL)(IF_HANDLE hIface, TL_HANDLE* phSystem);
GC_API_P(PIFUpdateDeviceList)(IF_HANDLE hIface, bool8_t* pbChanged, uint64_t iTimeout);
GC_API_P(PIFGetNumDevices)(IF_HANDLE hIface, uint32_t* piCount);
GC_API_P(PIFGetDeviceID)(IF_HANDLE hIface, uint32_t iIndex, char* sText, size_t* piSize);
GC_API_P(PIFGetDeviceInfo)
(IF_HANDLE hIface, const char* sDeviceID, DEVICE_INFO_CMD iInfoCmd, INFO_DATATYPE* piType, void* pBuffer,
 size_t* piSize);
GC_API_P(PIFOpenDevice)
(IF_HANDLE hIface, const char* sDeviceID, DEVICE_ACCESS_FLAGS iOpenFlags, DEV_HANDLE* phDevice);
GC_API_P(PDevClose)(DEV_HANDLE hDev);
GC_API_P(PDevGetInfo)
(DEV_HANDLE hDev, DEVICE_INFO_CMD iInfoCmd, INFO_DATATYPE* piType, void* pBuffer, size_t* piSize);
GC_API_P(PDevGetParentIF)(DEV_HANDLE hDev, IF_HANDLE* phIface);
GC_API_P(PDevGetPort)(DEV_HANDLE hDev, PORT_HANDLE* phRemotePort);
GC_API_P(PDevGetNumDataStreams)(DEV_HANDLE hDev, uint32_t* piCount);
GC_API_P(PDevGetDataStreamID)(DEV_HANDLE hDev, uint32_t iIndex, char* sText, size_t* piSize);
GC_API_P(PDevOpenDataStream)(DEV_HANDLE hDev, const char* sDataStreamID, DS_HANDLE* phDataStream);
GC_API_P(PDSClose)(DS_HANDLE hDataStream);
GC_API_P(PDSGetInfo)
(DS_HANDLE hDataStream, STREAM_INFO_CMD iInfoCmd, INFO_DATATYPE* piType, void* pBuffer, size_t* piSize);
GC_API_P(PDSGetParentDev)(DS_HANDLE hDataStream, DEV_HANDLE* phDevice);
GC_API_P(PDSAnnounceBuffer)
(DS_HANDLE hDataStream, void* pBuffer, size_t iSize, void* pUserPointer, BUFFER_HANDLE* phBuffer);
GC_API_P(PDSAllocAndAnnounceBuffer)
(DS_HANDLE hDataStream, size_t iSize, void* pUserPointer, BUFFER_HANDLE* phBuffer);
GC_API_P(PDSRevokeBuffer)
(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer, void** ppBuffer, void** ppUserPointer);
GC_API_P(PDSQueueBuffer)(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer);
GC_API_P(PDSFlushQueue)(DS_HANDLE hDataStream, ACQ_QUEUE_TYPE iOperation);
GC_API_P(PDSGetBufferID)(DS_HANDLE hDataStream, uint32_t iIndex, BUFFER_HANDLE* phBuffer);
GC_API_P(PDSStartAcquisition)(DS_HANDLE hDataStream, ACQ_START_FLAGS iFlags, uint64_t iNumToAcquire);
GC_API_P(PDSStopAcquisition)(DS_HANDLE hDataStream, ACQ_STOP_FLAGS iFlags);
GC_API_P(PDSGetBufferInfo)
(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer, BUFFER_INFO_CMD iInfoCmd, INFO_DATATYPE* piType, void* pBuffer,
 size_t* piSize);
GC_API_P(PDSGetBufferChunkData)
(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer, SINGLE_CHUNK_DATA* pChunkData, size_t* piCount);
GC_API_P(PDSGetNumBufferParts)(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer, uint32_t* piCount);
GC_API_P(PDSGetBufferPartInfo)
(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer, uint32_t iPartIndex, BUFFER_PART_INFO_CMD iInfoCmd,
 INFO_DATATYPE* piType, void* pBuffer, size_t* piSize);
GC_API_P(PGCGetPortInfo)
(PORT_HANDLE hPort, PORT_INFO_CMD iInfoCmd, INFO_DATATYPE* piType, void* pBuffer, size_t* piSize);
GC_API_P(PGCGetNumPortURLs)(PORT_HANDLE hPort, uint32_t* piCount);
GC_API_P(PGCGetPortURLInfo)
(PORT_HANDLE hPort, uint32_t iURLIndex, URL_INFO_CMD iInfoCmd, INFO_DATATYPE* piType, void* pBuffer,
 size_t* piSize);
GC_API_P(PGCGetPortURL)(PORT_HANDLE hPort, char* sText, size_t* piSize);
GC_API_P(PGCReadPort)(PORT_HANDLE hPort, uint64_t iAddress, void* pBuffer, size_t* piSize);
GC_API_P(PGCWritePort)(PORT_HANDLE hPort, uint64_t iAddress, const void* pBuffer, size_t* piSize);
GC_API_P(PGCReadPortStacked)(PORT_HANDLE hPort, PORT_REGISTER_STACK_ENTRY* pEntries, size_t* piCount);
GC_API_P(PGCWritePortStacked)(PORT_HANDLE hPort, PORT_REGISTER_STACK_ENTRY* pEntries, size_t* piCount);
GC_API_P(PGCRegisterEvent)(EVENTSRC_HANDLE hEventSrc, EVENT_TYPE iEventID, EVENT_HANDLE* phEvent);
GC_API_P(PGCUnregisterEvent)(EVENTSRC_HANDLE hEventSrc, EVENT_TYPE iEventID);
GC_API_P(PEventGetData)(EVENT_HANDLE hEvent, void* pBuffer, size_t* piSize, uint64_t iTimeout);
GC_API_P(PEventGetDataInfo)
(EVENT_HANDLE hEvent, const void* pInBuffer, size_t iInSize, EVENT_DATA_INFO_CMD iInfoCmd,
 INFO_DATATYPE* piType, void* pOutBuffer, size_t* piOutSize);
GC_API_P(PEventGetInfo)
(EVENT_HANDLE hEvent, EVENT_INFO_CMD iInfoCmd, INFO_DATATYPE* piType, void* pBuffer, size_t* piSize);
GC_API_P(PEventFlush)(EVENT_HANDLE hEvent);
GC_API_P(PEventKill)(EVENT_HANDLE hEvent);

#ifdef __cplusplus
} /* namespace GenTL */
} /* extern "C" */

static_assert(sizeof(GenTL::bool8_t) == 1, "a bool8_t is one byte");
#define GENTL_ASSERT static_assert
#define GENTL_STRUCT(type) GenTL::type
#else
#define GENTL_ASSERT _Static_assert
#define GENTL_STRUCT(type) type
#endif

#if UINTPTR_MAX == UINT64_MAX
GENTL_ASSERT(sizeof(GENTL_STRUCT(EVENT_NEW_BUFFER_DATA)) == 16, "two pointers");
GENTL_ASSERT(offsetof(GENTL_STRUCT(EVENT_NEW_BUFFER_DATA), BufferHandle) == 0, "first");
GENTL_ASSERT(offsetof(GENTL_STRUCT(EVENT_NEW_BUFFER_DATA), pUserPointer) == 8, "second");
GENTL_ASSERT(sizeof(GENTL_STRUCT(PORT_REGISTER_STACK_ENTRY)) == 24, "packed");
GENTL_ASSERT(offsetof(GENTL_STRUCT(PORT_REGISTER_STACK_ENTRY), Address) == 0, "first");
GENTL_ASSERT(offsetof(GENTL_STRUCT(PORT_REGISTER_STACK_ENTRY), pBuffer) == 8, "second");
GENTL_ASSERT(offsetof(GENTL_STRUCT(PORT_REGISTER_STACK_ENTRY), Size) == 16, "third");
GENTL_ASSERT(sizeof(GENTL_STRUCT(SINGLE_CHUNK_DATA)) == 24, "packed");
GENTL_ASSERT(offsetof(GENTL_STRUCT(SINGLE_CHUNK_DATA), ChunkID) == 0, "first");
GENTL_ASSERT(offsetof(GENTL_STRUCT(SINGLE_CHUNK_DATA), ChunkOffset) == 8, "second");
GENTL_ASSERT(offsetof(GENTL_STRUCT(SINGLE_CHUNK_DATA), ChunkLength) == 16, "third");
#endif
#undef GENTL_ASSERT
#undef GENTL_STRUCT
