#include <KAL_AUTO_Node/Business_Rules.h>
#include <memory>
#include <string>

#if __has_include(<QObject>)
#error "Qt's headers are in reach, so that this program proves nothing"
#endif

namespace {

using namespace KAL_AUTO_Node;

class Validator : public TextValidator {
  public:
    bool ValidateText(const std::string& text) override { return !text.empty(); }
};

} // namespace

int main() {
    ComponentFactory components;
    components.Register(TextValidator::Identifier, [] { return std::make_unique<Validator>(); });
    const bool replaced = components.Create<TextValidator>()->ValidateText("\"");
    const Business_Rules rules(components);
    return replaced && !rules.Opened() ? 0 : 1;
}
