#pragma once

#include <exception>
#include <utility>

namespace ZqApi {

/// Runs the steps of a teardown, each whatever the ones before it threw, and keeps the first failure.
///
/// Dropping the object drops the failure, which is what destructors want.
class Teardown {
public:
    template <class Step>
    void Run(Step&& step) noexcept {
        try {
            std::forward<Step>(step)();
        } catch (...) {
            if (!m_First)
                m_First = std::current_exception();
        }
    }

    void RethrowFirst() const {
        if (m_First)
            std::rethrow_exception(m_First);
    }

private:
    std::exception_ptr m_First;
};

} // namespace ZqApi
