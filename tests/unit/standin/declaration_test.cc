#include "standin/declaration.h"

#include <gtest/gtest.h>

namespace zqv::standin {
namespace {

TEST(DeclarationTest, NameAlone) {
  const auto declaration = ParseDeclaration("Constructor");
  ASSERT_TRUE(declaration.has_value());
  EXPECT_EQ(declaration->name, "Constructor");
  EXPECT_TRUE(declaration->parameters.empty());
  EXPECT_EQ(declaration->result.name, "");
}

TEST(DeclarationTest, ParametersAndResult) {
  const auto declaration = ParseDeclaration("Mix( a as Integer,B As String ) as Double");
  ASSERT_TRUE(declaration.has_value());
  ASSERT_EQ(declaration->parameters.size(), 2U);
  EXPECT_EQ(declaration->parameters[0].name, "a");
  EXPECT_EQ(declaration->parameters[0].type.name, "Integer");
  EXPECT_EQ(declaration->parameters[1].name, "B");
  EXPECT_EQ(declaration->parameters[1].type.name, "String");
  EXPECT_EQ(declaration->result.name, "Double");
  EXPECT_FALSE(declaration->result.is_array);
}

TEST(DeclarationTest, ArrayResult) {
  const auto declaration = ParseDeclaration("Parts as Thing()");
  ASSERT_TRUE(declaration.has_value());
  EXPECT_EQ(declaration->result.name, "Thing");
  EXPECT_TRUE(declaration->result.is_array);
}

TEST(DeclarationTest, RejectsMalformedText) {
  for (const char* text :
       {"", "(a as Integer)", "Add(a as Integer", "Add(a)", "Add(a as)", "Add(as Integer)",
        "Add(a as Integer,)", "Add as", "Add as Integer(", "Add as Integer() x", "Add Integer",
        "Add(a as Integer) as Integer as Integer", "A-b"}) {
    EXPECT_FALSE(ParseDeclaration(text).has_value()) << text;
  }
}

TEST(DeclarationTest, SignatureHasTypesOnly) {
  EXPECT_EQ(Signature(*ParseDeclaration("Parts(Index as Integer, x as Thing()) as String")),
            "parts(integer,thing())");
  EXPECT_EQ(Signature(*ParseDeclaration("Parts as Thing()")), "parts()");
}

TEST(DeclarationTest, Sameness) {
  const auto same = [](const char* left, const char* right) {
    return SameDeclaration(*ParseDeclaration(left), *ParseDeclaration(right));
  };
  EXPECT_TRUE(same("Add(a as Integer) as String", "add(OTHER As integer) As STRING"));
  EXPECT_FALSE(same("Add(a as Integer) as String", "Add(a as Integer)"));
  EXPECT_FALSE(same("Add(a as Integer)", "Add(a as String)"));
  EXPECT_FALSE(same("Parts as Thing", "Parts as Thing()"));
}

}  // namespace
}  // namespace zqv::standin
