#include "genapi/src/formula/Formula.h"

#include <array>
#include <cmath>

namespace GENAPI_NAMESPACE::inside {

namespace {

/// An operand: the smaller sibling of Number, without the redundant double.
struct Operand {
    bool isInteger;
    union {
        int64_t integer;
        double real;
    };

    static Operand Of(int64_t value) {
        Operand result;
        result.isInteger = true;
        result.integer = value;
        return result;
    }
    static Operand Of(double value) {
        Operand result;
        result.isInteger = false;
        result.real = value;
        return result;
    }
    static Operand Of(bool value) { return Of(int64_t{value}); }
    double AsDouble() const { return isInteger ? static_cast<double>(integer) : real; }
    int64_t AsInteger() const { return isInteger ? integer : Truncate(real); }
    Number AsNumber() const { return isInteger ? Number::Of(integer) : Number::Of(real); }
    bool IsTrue() const { return isInteger ? integer != 0 : real != 0; }
};

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
Operand Arithmetic(Op op, Operand left, Operand right, bool integerOnly) {
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
            return Operand::Of(result);
    }
    const double a = left.AsDouble();
    const double b = right.AsDouble();
    return Operand::Of(op == Op::Add ? a + b : op == Op::Subtract ? a - b : a * b);
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

Operand Bitwise(Op op, int64_t left, int64_t right) {
    switch (op) {
    case Op::Or:
        return Operand::Of(left | right);
    case Op::Xor:
        return Operand::Of(left ^ right);
    case Op::And:
        return Operand::Of(left & right);
    case Op::ShiftLeft:
        return Operand::Of(Wrap(Bits(left) << (right & 63)));
    default:
        return Operand::Of(left >> (right & 63));
    }
}

Operand PowerOf(Operand left, Operand right, bool integerOnly) {
    if (integerOnly || (left.isInteger && right.isInteger && right.integer >= 0)) {
        const double real = std::pow(left.AsDouble(), right.AsDouble());
        if (integerOnly || std::fabs(real) < 9.2e18)
            return Operand::Of(IntegerPower(left.AsInteger(), right.AsInteger()));
        return Operand::Of(real);
    }
    return Operand::Of(std::pow(left.AsDouble(), right.AsDouble()));
}

Operand Binary(Op op, Operand left, Operand right, bool integerOnly) {
    switch (op) {
    case Op::Add:
    case Op::Subtract:
    case Op::Multiply:
        return Arithmetic(op, left, right, integerOnly);
    case Op::Divide:
        return integerOnly ? Operand::Of(IntegerDivide(left.integer, right.integer, false))
                           : Operand::Of(RealDivide(left.AsDouble(), right.AsDouble()));
    case Op::Modulo:
        return Operand::Of(IntegerDivide(left.AsInteger(), right.AsInteger(), true));
    case Op::Power:
        return PowerOf(left, right, integerOnly);
    case Op::Or:
    case Op::Xor:
    case Op::And:
    case Op::ShiftLeft:
    case Op::ShiftRight:
        return Bitwise(op, left.AsInteger(), right.AsInteger());
    default:
        return Operand::Of(left.isInteger && right.isInteger
                               ? Compare(op, left.integer, right.integer)
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

Operand Call(Function function, Operand x, Operand digits, bool integerOnly) {
    const bool rounding = function == Function::Trunc || function == Function::Floor ||
                          function == Function::Ceil || function == Function::Round;
    if (x.isInteger) {
        if (function == Function::Sgn)
            return Operand::Of(int64_t{x.integer > 0} - int64_t{x.integer < 0});
        if (function == Function::Neg)
            return Operand::Of(Wrap(0 - Bits(x.integer)));
        if (function == Function::Abs)
            return x.integer < 0 ? Operand::Of(Wrap(0 - Bits(x.integer))) : x;
        if (rounding && (integerOnly || function != Function::Round || digits.AsDouble() >= 0))
            return x;
    }
    const double result = RealFunction(function, x.AsDouble(), digits.AsDouble());
    return integerOnly ? Operand::Of(Truncate(result)) : Operand::Of(result);
}

Operand UnaryOf(Op op, Operand x) {
    switch (op) {
    case Op::Truth:
        return Operand::Of(x.IsTrue());
    case Op::Not:
        return Operand::Of(!x.IsTrue());
    case Op::Invert:
        return Operand::Of(~x.AsInteger());
    default:
        return x.isInteger ? Operand::Of(Wrap(0 - Bits(x.integer))) : Operand::Of(-x.real);
    }
}

Operand LoadVariable(bool integer, uint32_t slot, VariableValues& values) {
    const Number value = values.Value(slot);
    if (integer || value.isInteger)
        return Operand::Of(value.AsInteger());
    return Operand::Of(value.real);
}

/// Without values, there are no variables.
Operand Run(const Instruction* code, size_t count, bool integer, VariableValues* values, Operand* top) {
    for (size_t next = 0; next < count;) {
        const Instruction& step = code[next++];
        switch (step.op) {
        case Op::PushInteger:
            *top++ = Operand::Of(step.integer);
            break;
        case Op::PushReal:
            *top++ = Operand::Of(step.real);
            break;
        case Op::Load:
            *top++ = LoadVariable(integer, step.argument, *values);
            break;
        case Op::Undefined:
            throw UndefinedName{step.argument};
        case Op::Jump:
            next = step.argument;
            break;
        case Op::JumpIfZero:
            next = (--top)->IsTrue() ? next : step.argument;
            break;
        case Op::JumpIfNotZero:
            next = (--top)->IsTrue() ? step.argument : next;
            break;
        case Op::Truth:
        case Op::Not:
        case Op::Invert:
        case Op::Negate:
            top[-1] = UnaryOf(step.op, top[-1]);
            break;
        case Op::Function:
            top -= step.count;
            *top = Call(static_cast<Function>(step.argument), *top,
                        step.count > 1 ? top[1] : Operand::Of(int64_t{0}), integer);
            ++top;
            break;
        default:
            --top;
            top[-1] = Binary(step.op, top[-1], *top, integer);
        }
    }
    return top[-1];
}

} // namespace

std::optional<Number> EvaluateConstants(const Instruction* code, size_t count, bool integer) {
    constexpr size_t kMostInstructions = 4;
    std::array<Operand, kMostInstructions> stack;
    if (count > kMostInstructions)
        return std::nullopt;
    try {
        return Run(code, count, integer, nullptr, stack.data()).AsNumber();
    } catch (const FormulaError&) {
        return std::nullopt;
    }
}

Number EvaluateFormula(const Formula& formula, VariableValues& values) {
    constexpr size_t kUsualStack = 32;
    const auto run = [&](Operand* stack) {
        return Run(formula.code.begin(), formula.code.size(), formula.integer, &values, stack).AsNumber();
    };
    try {
        if (formula.stackSize <= kUsualStack) {
            std::array<Operand, kUsualStack> stack;
            return run(stack.data());
        }
        std::vector<Operand> stack(formula.stackSize);
        return run(stack.data());
    } catch (const UndefinedName& name) {
        throw FormulaError("'" + formula.undefined[name.number].Copy() + "' is not defined");
    }
}

} // namespace GENAPI_NAMESPACE::inside
