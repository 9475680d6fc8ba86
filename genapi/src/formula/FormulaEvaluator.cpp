#include "genapi/src/formula/Formula.h"

#include <array>
#include <cmath>

namespace GENAPI_NAMESPACE::inside {

namespace {

/// Evaluation has met a name that nobody declares.
struct UndefinedName {
    uint32_t number;
};

int64_t Wrap(uint64_t value) {
    return static_cast<int64_t>(value);
}
uint64_t Bits(int64_t value) {
    return static_cast<uint64_t>(value);
}

Number Logical(bool value) {
    return Number::Of(int64_t{value});
}

int64_t IntegerPower(int64_t base, int64_t exponent) {
    if (exponent < 0) {
        if (base == 0)
            throw FormulaError("division by zero");
        if (base == 1)
            return 1;
        return base == -1 ? (exponent % 2 == 0 ? 1 : -1) : 0;
    }
    uint64_t result = 1;
    for (uint64_t square = Bits(base); exponent != 0; exponent >>= 1, square *= square)
        if (exponent & 1)
            result *= square;
    return Wrap(result);
}

int64_t IntegerDivide(int64_t left, int64_t right, bool modulo) {
    if (right == 0)
        throw FormulaError("division by zero");
    if (right == -1)
        return modulo ? 0 : Wrap(0 - Bits(left));
    return modulo ? left % right : left / right;
}

double RealDivide(double left, double right) {
    if (right == 0)
        throw FormulaError("division by zero");
    return left / right;
}

// In a float formula whole numbers stay whole as long as they fit: (HI<<32)|LO must be exact.
template <Op op>
inline Number Arithmetic(Number left, Number right, bool integerOnly) {
    if (left.isInteger && right.isInteger) {
        int64_t result = 0;
        bool overflow = false;
        if (op == Op::Add)
            overflow = __builtin_add_overflow(left.integer, right.integer, &result);
        else if (op == Op::Subtract)
            overflow = __builtin_sub_overflow(left.integer, right.integer, &result);
        else
            overflow = __builtin_mul_overflow(left.integer, right.integer, &result);
        if (!overflow || integerOnly)
            return Number::Of(result);
    }
    const double a = left.AsDouble();
    const double b = right.AsDouble();
    return Number::Of(op == Op::Add ? a + b : op == Op::Subtract ? a - b : a * b);
}

inline Number Divide(Number left, Number right, bool integerOnly) {
    return integerOnly ? Number::Of(IntegerDivide(left.integer, right.integer, false))
                       : Number::Of(RealDivide(left.AsDouble(), right.AsDouble()));
}

template <class T>
bool Compare(Op op, T left, T right) {
    switch (op) {
    case Op::Equal:
        return left == right;
    case Op::NotEqual:
        return left != right;
    case Op::Less:
        return left < right;
    case Op::LessEqual:
        return left <= right;
    case Op::Greater:
        return left > right;
    default:
        return left >= right;
    }
}

Number Bitwise(Op op, int64_t left, int64_t right) {
    switch (op) {
    case Op::Or:
        return Number::Of(left | right);
    case Op::Xor:
        return Number::Of(left ^ right);
    case Op::And:
        return Number::Of(left & right);
    case Op::ShiftLeft:
        return Number::Of(Wrap(Bits(left) << (right & 63)));
    default:
        return Number::Of(left >> (right & 63));
    }
}

Number PowerOf(Number left, Number right, bool integerOnly) {
    if (integerOnly || (left.isInteger && right.isInteger && right.integer >= 0)) {
        const double real = std::pow(left.AsDouble(), right.AsDouble());
        if (integerOnly || std::fabs(real) < 9.2e18)
            return Number::Of(IntegerPower(left.AsInteger(), right.AsInteger()));
        return Number::Of(real);
    }
    return Number::Of(std::pow(left.AsDouble(), right.AsDouble()));
}

// The operators that Run leaves to it.
Number Binary(Op op, Number left, Number right, bool integerOnly) {
    switch (op) {
    case Op::Modulo:
        return Number::Of(IntegerDivide(left.AsInteger(), right.AsInteger(), true));
    case Op::Power:
        return PowerOf(left, right, integerOnly);
    case Op::Or:
    case Op::Xor:
    case Op::And:
    case Op::ShiftLeft:
    case Op::ShiftRight:
        return Bitwise(op, left.AsInteger(), right.AsInteger());
    default:
        return Logical(left.isInteger && right.isInteger ? Compare(op, left.integer, right.integer)
                                                         : Compare(op, left.AsDouble(), right.AsDouble()));
    }
}

double RealFunction(Function function, double x, double digits) {
    switch (function) {
    case Function::Atan:
        return std::atan(x);
    case Function::Cos:
        return std::cos(x);
    case Function::Sin:
        return std::sin(x);
    case Function::Tan:
        return std::tan(x);
    case Function::Exp:
        return std::exp(x);
    case Function::Ln:
        return std::log(x);
    case Function::Lg:
        return std::log10(x);
    case Function::Sqrt:
        return std::sqrt(x);
    case Function::Trunc:
        return std::trunc(x);
    case Function::Floor:
        return std::floor(x);
    case Function::Ceil:
        return std::ceil(x);
    case Function::Asin:
        return std::asin(x);
    case Function::Acos:
        return std::acos(x);
    case Function::Abs:
        return std::fabs(x);
    case Function::Neg:
        return -x;
    case Function::Sgn:
        return x > 0 ? 1 : x < 0 ? -1 : 0;
    case Function::Round:
        break;
    }
    if (digits > -1 && digits < 1)
        return std::round(x);
    const double scale = std::pow(10.0, std::trunc(digits));
    return std::round(x * scale) / scale;
}

Number Call(const Instruction& call, Number x, Number digits, bool integerOnly) {
    const auto function = static_cast<Function>(call.argument);
    const bool rounding = function == Function::Trunc || function == Function::Floor ||
                          function == Function::Ceil || function == Function::Round;
    if (x.isInteger) {
        if (function == Function::Sgn)
            return Number::Of(int64_t{x.integer > 0} - int64_t{x.integer < 0});
        if (function == Function::Neg)
            return Number::Of(Wrap(0 - Bits(x.integer)));
        if (function == Function::Abs)
            return x.integer < 0 ? Number::Of(Wrap(0 - Bits(x.integer))) : x;
        if (rounding && (integerOnly || function != Function::Round || digits.AsDouble() >= 0))
            return x;
    }
    const double result = RealFunction(function, x.AsDouble(), digits.AsDouble());
    return integerOnly ? Number::Of(Truncate(result)) : Number::Of(result);
}

Number UnaryOf(Op op, Number x) {
    switch (op) {
    case Op::Truth:
        return Logical(x.IsTrue());
    case Op::Not:
        return Logical(!x.IsTrue());
    case Op::Invert:
        return Number::Of(~x.AsInteger());
    default:
        return x.isInteger ? Number::Of(Wrap(0 - Bits(x.integer))) : Number::Of(-x.real);
    }
}

Number LoadVariable(bool integer, uint32_t slot, VariableValues& values) {
    const Number value = values.Value(slot);
    return integer ? Number::Of(value.AsInteger()) : value;
}

/// Without values, there are no variables. The last operand is kept beside the stack, whose first place
/// nobody reads.
Number Run(const Instruction* code, size_t count, bool integer, VariableValues* values, Number* stack) {
    Number last{};
    for (size_t next = 0; next < count;) {
        const Instruction& step = code[next++];
        switch (step.op) {
        case Op::PushInteger:
            *stack++ = last;
            last = Number::Of(step.integer);
            break;
        case Op::PushReal:
            *stack++ = last;
            last = Number::Of(step.real);
            break;
        case Op::Load:
            *stack++ = last;
            last = LoadVariable(integer, step.argument, *values);
            break;
        case Op::Undefined:
            throw UndefinedName{step.argument};
        case Op::Jump:
            next = step.argument;
            break;
        case Op::JumpIfZero:
        case Op::JumpIfNotZero:
            next = last.IsTrue() == (step.op == Op::JumpIfNotZero) ? step.argument : next;
            last = *--stack;
            break;
        case Op::Truth:
        case Op::Not:
        case Op::Invert:
        case Op::Negate:
            last = UnaryOf(step.op, last);
            break;
        case Op::Function:
            if (step.count == 1 && !last.isInteger && !integer)
                last = Number::Of(RealFunction(static_cast<Function>(step.argument), last.real, 0));
            else
                last = step.count > 1 ? Call(step, *--stack, last, integer) : Call(step, last, {}, integer);
            break;
        case Op::Add:
            last = Arithmetic<Op::Add>(*--stack, last, integer);
            break;
        case Op::Subtract:
            last = Arithmetic<Op::Subtract>(*--stack, last, integer);
            break;
        case Op::Multiply:
            last = Arithmetic<Op::Multiply>(*--stack, last, integer);
            break;
        case Op::Divide:
            last = Divide(*--stack, last, integer);
            break;
        default:
            last = Binary(step.op, *--stack, last, integer);
        }
    }
    return last;
}

} // namespace

std::optional<Number> EvaluateConstants(const Instruction* code, size_t count, bool integer) {
    constexpr size_t kMostNumbers = 2; // of any step
    std::array<Number, kMostNumbers> stack;
    try {
        return Run(code, count, integer, nullptr, stack.data());
    } catch (const FormulaError&) {
        return std::nullopt;
    }
}

Number EvaluateFormula(const Formula& formula, VariableValues& values) {
    constexpr size_t kUsualStack = 32;
    const auto run = [&](Number* stack) {
        return Run(formula.code.begin(), formula.code.size(), formula.integer, &values, stack);
    };
    try {
        if (formula.stackSize <= kUsualStack) {
            union Stack { // clearing it would take as long as a formula
                Stack() {}
                Number places[kUsualStack];
            } stack;
            return run(stack.places);
        }
        std::vector<Number> stack(formula.stackSize);
        return run(stack.data());
    } catch (const UndefinedName& name) {
        throw FormulaError("'" + formula.undefined[name.number].Copy() + "' is not defined");
    }
}

} // namespace GENAPI_NAMESPACE::inside
