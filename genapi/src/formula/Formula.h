#pragma once

#include "genapi/src/document/Lexical.h"
#include "genapi/src/image/Flat.h"

#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace GENAPI_NAMESPACE::inside {

/// A formula that can't be compiled, or has no value now.
class FormulaError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

enum class Op : uint8_t {
    PushInteger,
    PushReal,
    Load,      ///< argument: slot of the variable
    Undefined, ///< argument: which of the undefined names
    Jump,      ///< argument: target
    JumpIfZero,
    JumpIfNotZero,
    Truth,
    Not,
    Invert,
    Negate,
    Or,
    Xor,
    And,
    Equal,
    NotEqual,
    Less,
    LessEqual,
    Greater,
    GreaterEqual,
    ShiftLeft,
    ShiftRight,
    Add,
    Subtract,
    Multiply,
    Divide,
    Modulo,
    Power,
    Function ///< argument: the function; count: its operands
};

enum class Function : uint8_t {
    Sgn,
    Neg,
    Atan,
    Cos,
    Sin,
    Tan,
    Abs,
    Exp,
    Ln,
    Lg,
    Sqrt,
    Trunc,
    Floor,
    Ceil,
    Round,
    Asin,
    Acos
};

struct Instruction {
    Op op;
    uint8_t count = 0;
    uint32_t argument = 0;
    union {
        int64_t integer = 0;
        double real;
    };
};

/// A formula as the compiler leaves it.
struct FormulaDraft {
    std::vector<Instruction> code;
    std::vector<std::string_view> undefined; ///< names that nobody declares
    uint32_t stackSize = 0;
};

/// A compiled formula, part of an image. Immutable; any thread may evaluate it.
struct Formula {
    Text text; ///< the beginning, for messages
    List<Instruction> code;
    List<Text> undefined; ///< names that nobody declares: an error only where evaluation meets one
    uint32_t stackSize = 0;
    bool integer = false; ///< everything is int64, as IntSwissKnife and IntConverter have it
};

/// What a name in a formula stands for.
struct Symbol {
    enum class Kind : uint8_t { Undefined, Variable, Constant, Expression } kind = Kind::Undefined;
    uint32_t slot = 0;           ///< of a variable
    Number constant;             ///< of a constant
    std::string_view expression; ///< text of a sub-formula
};

/// The names that formulas of one node may use.
class SymbolTable {
public:
    virtual Symbol Find(std::string_view name) = 0;

protected:
    ~SymbolTable() = default;
};

/// Compiles `text`, which must outlive the draft; what was in that before is gone. FormulaError says what is
/// wrong and where.
void CompileFormula(std::string_view text, bool integer, SymbolTable& symbols, FormulaDraft& draft);

/// Gives the values of variables while a formula is evaluated.
class VariableValues {
public:
    virtual Number Value(uint32_t slot) = 0;

protected:
    ~VariableValues() = default;
};

/// The value of instructions without variables, if it has one.
std::optional<Number> EvaluateConstants(const Instruction* code, size_t count, bool integer);

/// FormulaError says why there is no value; what `values` throws passes.
Number EvaluateFormula(const Formula& formula, VariableValues& values);

} // namespace GENAPI_NAMESPACE::inside
