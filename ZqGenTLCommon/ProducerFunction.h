#pragma once

#include <atomic>

#include <GenTL.h>

namespace ZqApi {

/// One entry of the producer's function table: null, or a pointer to the function.
///
/// Used like the pointer itself. Atomic, because a module that outlives its system may look while the system
/// empties the table.
template <class Pointer>
class ProducerFunction {
public:
    ProducerFunction() = default;
    ProducerFunction(const ProducerFunction& other) : m_Pointer(static_cast<Pointer>(other)) {}
    ProducerFunction& operator=(const ProducerFunction&) = delete;

    void Set(Pointer pointer) { m_Pointer.store(pointer, std::memory_order_release); }
    operator Pointer() const { return m_Pointer.load(std::memory_order_acquire); }

private:
    std::atomic<Pointer> m_Pointer{nullptr};
};

/// Calls a function of the producer; one that the producer lacks answers GC_ERR_NOT_IMPLEMENTED.
///
/// Null pointers among the arguments need their type: `static_cast<char*>(nullptr)`.
template <class Pointer, class... Arguments>
GenTL::GC_ERROR CallProducer(const ProducerFunction<Pointer>& function, Arguments... arguments) {
    const Pointer pointer = function;
    return pointer != nullptr ? pointer(arguments...)
                              : static_cast<GenTL::GC_ERROR>(GenTL::GC_ERR_NOT_IMPLEMENTED);
}

/// The result of a call that gives a handle. A producer that says success and gives none would bring the
/// process down at the first use of the module; it has given an invalid handle.
inline GenTL::GC_ERROR RequireHandle(GenTL::GC_ERROR result, const void* const& handle) {
    return result == GenTL::GC_ERR_SUCCESS && handle == nullptr
               ? static_cast<GenTL::GC_ERROR>(GenTL::GC_ERR_INVALID_HANDLE)
               : result;
}

} // namespace ZqApi
