#include <GenApi/EnumClasses.h>

#include <iterator>

namespace GENAPI_NAMESPACE {

using GENICAM_NAMESPACE::gcstring;

namespace {

template <class Enum>
struct EnumText {
    Enum value;
    const char* text;
};

// In each table the last row is the undefined value.
constexpr EnumText<EAccessMode> kAccessModes[] = {{NI, "NI"},
                                                  {NA, "NA"},
                                                  {WO, "WO"},
                                                  {RO, "RO"},
                                                  {RW, "RW"},
                                                  {_CycleDetectAccesMode, "_CycleDetectAccesMode"},
                                                  {_UndefinedAccesMode, "_UndefinedAccesMode"}};
constexpr EnumText<EVisibility> kVisibilities[] = {{Beginner, "Beginner"},
                                                   {Expert, "Expert"},
                                                   {Guru, "Guru"},
                                                   {Invisible, "Invisible"},
                                                   {_UndefinedVisibility, "_UndefinedVisibility"}};
constexpr EnumText<ECachingMode> kCachingModes[] = {{NoCache, "NoCache"},
                                                    {WriteThrough, "WriteThrough"},
                                                    {WriteAround, "WriteAround"},
                                                    {_UndefinedCachingMode, "_UndefinedCachingMode"}};
constexpr EnumText<ERepresentation> kRepresentations[] = {
    {Linear, "Linear"},         {Logarithmic, "Logarithmic"},
    {Boolean, "Boolean"},       {PureNumber, "PureNumber"},
    {HexNumber, "HexNumber"},   {IPV4Address, "IPV4Address"},
    {MACAddress, "MACAddress"}, {_UndefinedRepresentation, "_UndefinedRepresentation"}};
constexpr EnumText<EEndianess> kEndianess[] = {
    {BigEndian, "BigEndian"}, {LittleEndian, "LittleEndian"}, {_UndefinedEndian, "_UndefinedEndian"}};
constexpr EnumText<ESign> kSigns[] = {
    {Signed, "Signed"}, {Unsigned, "Unsigned"}, {_UndefinedSign, "_UndefinedSign"}};
constexpr EnumText<ENameSpace> kNameSpaces[] = {
    {Custom, "Custom"}, {Standard, "Standard"}, {_UndefinedNameSpace, "_UndefinedNameSpace"}};
constexpr EnumText<EStandardNameSpace> kStandardNameSpaces[] = {
    {None, "None"}, {GEV, "GEV"}, {IIDC, "IIDC"},
    {CL, "CL"},     {USB, "USB"}, {_UndefinedStandardNameSpace, "_UndefinedStandardNameSpace"}};
constexpr EnumText<EYesNo> kYesNo[] = {{Yes, "Yes"}, {No, "No"}, {_UndefinedYesNo, "_UndefinedYesNo"}};
constexpr EnumText<ESlope> kSlopes[] = {{Increasing, "Increasing"},
                                        {Decreasing, "Decreasing"},
                                        {Varying, "Varying"},
                                        {Automatic, "Automatic"},
                                        {_UndefinedESlope, "_UndefinedESlope"}};
constexpr EnumText<EDisplayNotation> kDisplayNotations[] = {
    {fnAutomatic, "Automatic"},
    {fnFixed, "Fixed"},
    {fnScientific, "Scientific"},
    {_UndefinedEDisplayNotation, "_UndefinedEDisplayNotation"}};
// No undefined value here: a value outside is shown as the most general interface.
constexpr EnumText<EInterfaceType> kInterfaceTypes[] = {
    {intfIValue, "IValue"},         {intfIInteger, "IInteger"},   {intfIBoolean, "IBoolean"},
    {intfICommand, "ICommand"},     {intfIFloat, "IFloat"},       {intfIString, "IString"},
    {intfIRegister, "IRegister"},   {intfICategory, "ICategory"}, {intfIEnumeration, "IEnumeration"},
    {intfIEnumEntry, "IEnumEntry"}, {intfIPort, "IPort"},         {intfIBase, "IBase"}};

template <class Enum, size_t N>
bool Find(const EnumText<Enum> (&table)[N], const gcstring& text, Enum* value) {
    for (const EnumText<Enum>& row : table)
        if (value && text == row.text) {
            *value = row.value;
            return true;
        }
    return false;
}

template <class Enum, size_t N>
const char* Text(const EnumText<Enum> (&table)[N], Enum value) {
    for (const EnumText<Enum>& row : table)
        if (row.value == value)
            return row.text;
    return table[N - 1].text;
}

} // namespace

#define GENAPI_DEFINE_ENUM_CLASS(Enum, table)                                                                \
    bool Enum##Class::FromString(const gcstring& ValueStr, Enum* pValue) {                                   \
        return Find(table, ValueStr, pValue);                                                                \
    }                                                                                                        \
    gcstring Enum##Class::ToString(Enum Value) {                                                             \
        return Text(table, Value);                                                                           \
    }                                                                                                        \
    void Enum##Class::ToString(gcstring& ValueStr, const Enum* pValue) {                                     \
        ValueStr = pValue ? Text(table, *pValue) : std::end(table)[-1].text;                                 \
    }

GENAPI_DEFINE_ENUM_CLASS(EAccessMode, kAccessModes)
GENAPI_DEFINE_ENUM_CLASS(EVisibility, kVisibilities)
GENAPI_DEFINE_ENUM_CLASS(ECachingMode, kCachingModes)
GENAPI_DEFINE_ENUM_CLASS(ERepresentation, kRepresentations)
GENAPI_DEFINE_ENUM_CLASS(EEndianess, kEndianess)
GENAPI_DEFINE_ENUM_CLASS(ESign, kSigns)
GENAPI_DEFINE_ENUM_CLASS(ENameSpace, kNameSpaces)
GENAPI_DEFINE_ENUM_CLASS(EStandardNameSpace, kStandardNameSpaces)
GENAPI_DEFINE_ENUM_CLASS(EYesNo, kYesNo)
GENAPI_DEFINE_ENUM_CLASS(ESlope, kSlopes)
GENAPI_DEFINE_ENUM_CLASS(EDisplayNotation, kDisplayNotations)
GENAPI_DEFINE_ENUM_CLASS(EInterfaceType, kInterfaceTypes)

} // namespace GENAPI_NAMESPACE
