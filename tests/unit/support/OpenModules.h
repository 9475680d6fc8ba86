#pragma once

#include "tests/support/ScriptedProducer.h"

#include <gtest/gtest.h>

/// Calls the producer the way a consumer does, through the symbols of the loaded file.
struct OpenModules {
    explicit OpenModules(const ZqTest::ScriptedProducer& scripted) : producer(scripted) {}

    template <class Function, class... Arguments>
    GenTL::GC_ERROR Call(const char* name, Arguments... arguments) const {
        const auto function = producer.Resolve<Function>(name);
        if (function == nullptr) {
            ADD_FAILURE() << name << " is missing";
            return GenTL::GC_ERR_NOT_IMPLEMENTED;
        }
        return function(arguments...);
    }

    void OpenSystem() {
        ASSERT_EQ(0, Call<GenTL::PGCInitLib>("GCInitLib"));
        ASSERT_EQ(0, Call<GenTL::PTLOpen>("TLOpen", &system));
        ASSERT_EQ(
            0, Call<GenTL::PTLUpdateInterfaceList>("TLUpdateInterfaceList", system, &changed, uint64_t{250}));
    }

    void OpenDevice() {
        OpenSystem();
        ASSERT_EQ(0, Call<GenTL::PTLOpenInterface>("TLOpenInterface", system, "IF1", &iface));
        ASSERT_EQ(0, Call<GenTL::PIFOpenDevice>("IFOpenDevice", iface, "DEV1",
                                                GenTL::DEVICE_ACCESS_FLAGS{GenTL::DEVICE_ACCESS_CONTROL},
                                                &device));
        ASSERT_EQ(0, Call<GenTL::PDevGetPort>("DevGetPort", device, &remote));
    }

    void OpenStream(size_t buffers = 0) {
        OpenDevice();
        ASSERT_EQ(0, Call<GenTL::PDevOpenDataStream>("DevOpenDataStream", device, "DEV1_Stream0", &stream));
        ASSERT_EQ(0, Register(stream, GenTL::EVENT_NEW_BUFFER, &newBuffer));
        for (size_t i = 0; i < buffers; ++i) {
            GenTL::BUFFER_HANDLE buffer = nullptr;
            ASSERT_EQ(0,
                      Call<GenTL::PDSAllocAndAnnounceBuffer>("DSAllocAndAnnounceBuffer", stream, size_t{4096},
                                                             static_cast<void*>(this), &buffer));
            ASSERT_EQ(0, Call<GenTL::PDSQueueBuffer>("DSQueueBuffer", stream, buffer));
        }
    }

    GenTL::GC_ERROR Register(void* source, GenTL::EVENT_TYPE type, GenTL::EVENT_HANDLE* event) const {
        return Call<GenTL::PGCRegisterEvent>("GCRegisterEvent", source, type, event);
    }

    GenTL::GC_ERROR Start() const {
        return Call<GenTL::PDSStartAcquisition>("DSStartAcquisition", stream,
                                                GenTL::ACQ_START_FLAGS{GenTL::ACQ_START_FLAGS_DEFAULT},
                                                GENTL_INFINITE);
    }

    GenTL::GC_ERROR Wait(GenTL::EVENT_HANDLE event, void* block, size_t* size, uint64_t timeoutMs) const {
        return Call<GenTL::PEventGetData>("EventGetData", event, block, size, timeoutMs);
    }

    GenTL::GC_ERROR ReadWord(uint64_t address, uint32_t* value, size_t* size) const {
        return Call<GenTL::PGCReadPort>("GCReadPort", remote, address, static_cast<void*>(value), size);
    }

    template <class T>
    GenTL::GC_ERROR BufferInfo(GenTL::BUFFER_HANDLE buffer, int32_t command, T* value) const {
        size_t size = sizeof(T);
        GenTL::INFO_DATATYPE type = 0;
        return Call<GenTL::PDSGetBufferInfo>("DSGetBufferInfo", stream, buffer, command, &type,
                                             static_cast<void*>(value), &size);
    }

    GenTL::GC_ERROR LastError(GenTL::GC_ERROR* code, char* text, size_t* size) const {
        return Call<GenTL::PGCGetLastError>("GCGetLastError", code, text, size);
    }

    ~OpenModules() {
        if (const auto close = producer.Resolve<GenTL::PGCCloseLib>("GCCloseLib"))
            close();
    }

    const ZqTest::ScriptedProducer& producer;
    GenTL::bool8_t changed = false;
    GenTL::TL_HANDLE system = nullptr;
    GenTL::IF_HANDLE iface = nullptr;
    GenTL::DEV_HANDLE device = nullptr;
    GenTL::PORT_HANDLE remote = nullptr;
    GenTL::DS_HANDLE stream = nullptr;
    GenTL::EVENT_HANDLE newBuffer = nullptr;
};
