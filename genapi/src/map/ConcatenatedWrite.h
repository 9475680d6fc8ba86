#pragma once

#include "genapi/src/formula/Formula.h"

#include <GenApi/ConcatenatedWrite.h>

#include <string>
#include <variant>
#include <vector>

namespace GENAPI_NAMESPACE::inside {

class NodeWriteConcatenator final : public CNodeWriteConcatenator {
public:
    struct Entry {
        GENICAM_NAMESPACE::gcstring name;
        std::variant<Number, GENICAM_NAMESPACE::gcstring> value;
    };

    void Add(const GENICAM_NAMESPACE::gcstring& NodeName, int64_t Value) override;
    void Add(const GENICAM_NAMESPACE::gcstring& NodeName, double Value) override;
    void Add(const GENICAM_NAMESPACE::gcstring& NodeName, const GENICAM_NAMESPACE::gcstring& Value) override;
    void Clear() override;
    void Destroy() override;

    std::vector<Entry> entries;
};

} // namespace GENAPI_NAMESPACE::inside
