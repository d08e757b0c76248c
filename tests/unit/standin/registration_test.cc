// The rules that the host checks in a class definition. For each rule, a definition breaks only
// that one.
#include <sys/mman.h>
#include <unistd.h>

#include <functional>
#include <iterator>
#include <set>

#include "tests/unit/standin/fixture.h"

namespace zqv::standin {
namespace {

void Nothing() {}

const abi::REALproc kRecordGetter = reinterpret_cast<abi::REALproc>(~std::uintptr_t{0});

// A valid definition with one member of each kind. A test changes it to break a rule.
struct Sample {
  abi::REALproperty properties[2] = {};
  abi::REALmethodDefinition methods[2] = {};
  abi::REALproperty shared_properties[1] = {};
  abi::REALmethodDefinition shared_methods[1] = {};
  abi::REALattribute attributes[1] = {{"Hidden", ""}};
  abi::REALclassDefinition definition = {};

  Sample() {
    properties[0].name = "Text";
    properties[0].type = "String";
    properties[0].getter = kRecordGetter;
    properties[0].param = 8;
    properties[1].name = "Flag";
    properties[1].type = "Boolean";
    properties[1].getter = kRecordGetter;
    properties[1].param = 3;
    methods[0].declaration = "Parts as Sample()";
    methods[0].function = &Nothing;
    methods[1].declaration = "Parts(index as Integer) as Sample";
    methods[1].function = &Nothing;
    shared_properties[0].name = "Debug";
    shared_properties[0].type = "Boolean";
    shared_properties[0].getter = &Nothing;
    shared_methods[0].declaration = "Decode(Text as String) as String";
    shared_methods[0].function = &Nothing;
    definition.version = 13;
    definition.name = "Sample";
    definition.dataSize = 16;
    definition.properties = properties;
    definition.propertyCount = std::size(properties);
    definition.methods = methods;
    definition.methodCount = std::size(methods);
    definition.sharedProperties = shared_properties;
    definition.sharedPropertyCount = std::size(shared_properties);
    definition.sharedMethods = shared_methods;
    definition.sharedMethodCount = std::size(shared_methods);
  }
};

class RegistrationTest : public HostTest {
 protected:
  void SetUp() override {
    Start();
    api().RegisterPluginVersion(13);
  }
};
using RegistrationDeathTest = RegistrationTest;

TEST_F(RegistrationTest, FaultlessDefinition) {
  Sample sample;
  EXPECT_EQ(api().PluginRegisterClass(&sample.definition), 1);
  EXPECT_GT(sample.definition.forSystemUse, 0);
  host().FinishRegistration();
  EXPECT_NE(host().classes().Find("SAMPLE"), nullptr);
}

TEST_F(RegistrationTest, OffsetsDifferAndRecordsDoNotOverlap) {
  const char* const names[] = {"A", "B", "C", "D", "E"};
  const char* const supers[] = {nullptr, nullptr, "A", "C", "A"};
  const std::size_t sizes[] = {16, 96, 32, 0, 16};
  std::set<abi::RBInteger> offsets;
  abi::REALclassDefinition definitions[5] = {};
  for (std::size_t i = 0; i < 5; ++i) {
    definitions[i].version = 13;
    definitions[i].name = names[i];
    definitions[i].superName = supers[i];
    definitions[i].dataSize = sizes[i];
    api().PluginRegisterClass(&definitions[i]);
    offsets.insert(definitions[i].forSystemUse);
    EXPECT_EQ(definitions[i].forSystemUse % 16, 0);
    EXPECT_GE(definitions[i].forSystemUse, 32);
  }
  EXPECT_EQ(offsets.size(), 5U);
  constexpr abi::RBInteger kGap = 16;
  EXPECT_GE(definitions[2].forSystemUse, definitions[0].forSystemUse + 16 + kGap);
  EXPECT_GE(definitions[3].forSystemUse, definitions[2].forSystemUse + 32 + kGap);
  EXPECT_GE(definitions[4].forSystemUse, definitions[0].forSystemUse + 16 + kGap);
}

TEST_F(RegistrationTest, FlagsAreRecordedAsGiven) {
  Sample sample;
  sample.definition.flags = 0x4;
  sample.properties[0].flags = 0x30a;
  api().PluginRegisterClass(&sample.definition);
  sample.properties[0].flags = 0;
  EXPECT_EQ(host().classes().Find("Sample")->properties[0].flags, 0x30aU);
  EXPECT_EQ(host().classes().Find("Sample")->flags, 0x4U);
}

std::string constructed;
void ConstructBase(abi::REALobject) { constructed += "B"; }
void ConstructDerived(abi::REALobject) { constructed += "D"; }

TEST_F(RegistrationTest, ConstructorFunctionsRunFromTheTopDown) {
  abi::REALclassDefinition base{};
  base.version = 13;
  base.name = "Base";
  base.constructor = reinterpret_cast<abi::REALproc>(&ConstructBase);
  abi::REALclassDefinition derived = base;
  derived.name = "Derived";
  derived.superName = "Base";
  derived.constructor = reinterpret_cast<abi::REALproc>(&ConstructDerived);
  api().PluginRegisterClass(&base);
  api().PluginRegisterClass(&derived);
  constructed.clear();
  const Object object = NewInstance("Derived");
  EXPECT_EQ(constructed, "BD");
}

TEST_F(RegistrationTest, BelowVersion11TheLastFieldsAreNotRead) {
  const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
  void* const memory =
      mmap(nullptr, 2 * page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  ASSERT_NE(memory, MAP_FAILED);
  ASSERT_EQ(mprotect(static_cast<char*>(memory) + page, page, PROT_NONE), 0);
  constexpr std::size_t kOldSize = 200;
  static_assert(offsetof(abi::REALclassDefinition, delegates) == kOldSize);
  void* const place = static_cast<char*>(memory) + page - kOldSize;
  auto* const definition = static_cast<abi::REALclassDefinition*>(place);
  definition->version = 10;
  definition->name = "Old";
  api().RegisterPluginVersion(10);
  EXPECT_EQ(api().PluginRegisterClass(definition), 1);
  EXPECT_NE(host().ListClasses().find("class Old, version 10"), std::string::npos);
  api().REALUnlockObject(api().PluginNewInstance("Old"));
  definition->version = 13;
  definition->name = "New";
  EXPECT_DEATH(api().PluginRegisterClass(definition), "");
  munmap(memory, 2 * page);
}

TEST_F(RegistrationDeathTest, TypesMustBeRegisteredAtTheEnd) {
  Sample sample;
  sample.properties[0].type = "LaterClass";
  api().PluginRegisterClass(&sample.definition);
  EXPECT_DEATH(host().FinishRegistration(), "Sample.Text: the type LaterClass is not known");
  abi::REALclassDefinition later{};
  later.version = 13;
  later.name = "LaterClass";
  api().PluginRegisterClass(&later);
  host().FinishRegistration();
}

TEST_F(RegistrationDeathTest, TypesInDeclarationsMustBeKnown) {
  Sample sample;
  sample.methods[0].declaration = "Parts as Other()";
  sample.methods[1].declaration = "Parts(index as Another)";
  api().PluginRegisterClass(&sample.definition);
  EXPECT_DEATH(host().FinishRegistration(), "Sample.Parts: the type Other is not known");
}

TEST_F(RegistrationDeathTest, SuperClass) {
  Sample sample;
  sample.definition.superName = "Nobody";
  EXPECT_DEATH(api().PluginRegisterClass(&sample.definition), "super class is not known: Nobody");
  sample.definition.superName = "Date";
  EXPECT_DEATH(api().PluginRegisterClass(&sample.definition), "one of the host's own");
}

TEST_F(RegistrationDeathTest, NameIsTaken) {
  Sample sample;
  api().PluginRegisterClass(&sample.definition);
  EXPECT_DEATH(api().PluginRegisterClass(&sample.definition),
               "PluginRegisterClass: class \"Sample\": a class of this name exists");
  sample.definition.name = "DATE";
  EXPECT_DEATH(api().PluginRegisterClass(&sample.definition), "a class of this name exists");
}

TEST_F(RegistrationDeathTest, NullDefinition) {
  EXPECT_DEATH(api().PluginRegisterClass(nullptr), "the definition is null");
}

struct Rule {
  const char* name;
  std::function<void(Sample*)> breaks;
  const char* message;
};

const Rule kRules[] = {
    {"Name", [](Sample* s) { s->definition.name = nullptr; }, "the name is missing"},
    {"NameForm", [](Sample* s) { s->definition.name = "A B"; }, "the name is missing or not"},
    {"Version", [](Sample* s) { s->definition.version = 12; }, "version 12 was not announced"},
    {"DataSize", [](Sample* s) { s->definition.dataSize = 24; }, "no multiple of 16"},
    {"TableWithoutCount", [](Sample* s) { s->definition.propertyCount = 0; },
     "properties: the table and its count"},
    {"CountWithoutTable", [](Sample* s) { s->definition.methods = nullptr; },
     "methods: the table and its count"},
    {"SharedTable", [](Sample* s) { s->definition.sharedProperties = nullptr; },
     "shared properties: the table and its count"},
    {"SharedMethodTable", [](Sample* s) { s->definition.sharedMethodCount = 0; },
     "shared methods: the table and its count"},
    {"Attributes", [](Sample* s) { s->definition.attributeCount = 1; }, "attributes: the table"},
    {"Events", [](Sample* s) { s->definition.eventCount = 1; }, "events must be null"},
    {"EventInstances", [](Sample* s) { s->definition.eventInstanceCount = 1; },
     "event instances must be null"},
    {"Constants", [](Sample* s) { s->definition.constantCount = 1; }, "constants must be null"},
    {"Interfaces", [](Sample* s) { s->definition.interfaces = "x"; }, "interfaces must be null"},
    {"Delegates", [](Sample* s) { s->definition.delegateCount = 1; }, "delegates must be null"},
    {"Enums", [](Sample* s) { s->definition.enumCount = 1; }, "enums must be null"},
    {"PropertyName", [](Sample* s) { s->properties[0].name = nullptr; }, "without a name"},
    {"PropertyNameForm", [](Sample* s) { s->properties[0].name = "A B"; }, "not well-formed"},
    {"PropertyType", [](Sample* s) { s->properties[0].type = nullptr; }, "Text: no type"},
    {"PropertyTypeForm", [](Sample* s) { s->properties[0].type = "A B"; }, "not well-formed"},
    {"Getter", [](Sample* s) { s->properties[0].getter = nullptr; }, "Text: no getter"},
    {"Setter", [](Sample* s) { s->properties[0].setter = kRecordGetter; }, "standard setter"},
    {"Editor", [](Sample* s) { s->properties[0].editor = &Nothing; }, "Text: an editor"},
    {"FieldNegative", [](Sample* s) { s->properties[0].param = -8; }, "offset is negative"},
    {"FieldOutside", [](Sample* s) { s->properties[0].param = 16; }, "lies outside the record"},
    {"FieldHalfOutside", [](Sample* s) { s->properties[0].param = 12; }, "lies outside"},
    {"FieldUnaligned", [](Sample* s) { s->properties[0].param = 4; }, "is not aligned"},
    {"BooleanOutside", [](Sample* s) { s->properties[1].param = 16; }, "Flag: the field lies out"},
    {"SharedField", [](Sample* s) { s->shared_properties[0].getter = kRecordGetter; },
     "a shared property with the standard getter"},
    {"PropertyAttributes", [](Sample* s) { s->properties[0].attributes = s->attributes; },
     "Text: attributes: the table"},
    {"AttributeName",
     [](Sample* s) {
       s->attributes[0].name = nullptr;
       s->properties[0].attributes = s->attributes;
       s->properties[0].attributeCount = 1;
     },
     "an attribute without name"},
    {"Declaration", [](Sample* s) { s->methods[0].declaration = nullptr; }, "without a decl"},
    {"DeclarationForm", [](Sample* s) { s->methods[0].declaration = "Parts as"; },
     "\"Parts as\" is not well-formed"},
    {"Function", [](Sample* s) { s->methods[0].function = nullptr; }, "no function"},
    {"SetterFunction", [](Sample* s) { s->methods[0].setterFunction = &Nothing; },
     "a setter function"},
    {"TwoProperties", [](Sample* s) { s->properties[1].name = "TEXT"; }, "a second property"},
    {"SharedProperty", [](Sample* s) { s->shared_properties[0].name = "flag"; },
     "a second property"},
    {"TwoMethods", [](Sample* s) { s->methods[1].declaration = "parts as Integer"; },
     "a second such method"},
    {"SharedMethod", [](Sample* s) { s->shared_methods[0].declaration = "Parts"; },
     "a second such method"},
    {"MethodAndProperty", [](Sample* s) { s->methods[0].declaration = "Text(a as Integer)"; },
     "a method and a property of this name"},
};

std::ostream& operator<<(std::ostream& out, const Rule& rule) { return out << rule.name; }

class RuleDeathTest : public RegistrationTest, public ::testing::WithParamInterface<Rule> {};

TEST_P(RuleDeathTest, IsFatalToBreak) {
  Sample sample;
  GetParam().breaks(&sample);
  EXPECT_DEATH(api().PluginRegisterClass(&sample.definition), GetParam().message);
}

INSTANTIATE_TEST_SUITE_P(Rules, RuleDeathTest, ::testing::ValuesIn(kRules),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
}  // namespace zqv::standin
