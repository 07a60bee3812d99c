#pragma once

#include "KAL_AUTO_Node/Api.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>

namespace KAL_AUTO_Node {

// Components that the editor creates while it runs and that a host may replace with its own. Texts are UTF-8.
// Each is created for one use and released after it, on the user-interface thread.
class KAL_AUTO_NODE_API Component {
  public:
    virtual ~Component();
};

// Judges a node's label before it is saved.
class KAL_AUTO_NODE_API TextValidator : public Component {
  public:
    static constexpr const char* Identifier = "KAL_Validate_TEXTField.Business_Rules";

    // Whether the text is acceptable.
    virtual bool ValidateText(const std::string& text) = 0;
};

// Asks whether a missing node is to be created.
class KAL_AUTO_NODE_API ConfirmationDialog : public Component {
  public:
    static constexpr const char* Identifier = "{943DE27E-7610-41A9-967B-7E45E79530D7}";

    enum Answer : std::int32_t {
        Closed = 0,    // stop asking, create no more
        Create = 2,    // create this node
        Skip = 3,      // leave this node; as every other value
        CreateAll = 4, // create this node and every further one without asking
        Stop = 5,      // as Closed
    };

    // Asks modally and returns the answer. The editor calls it with 1, the question, 1, 7 and the title.
    virtual std::int32_t Ask(std::int16_t kind, const std::string& message, std::int32_t icon,
                             std::int32_t buttons, const std::string& title) = 0;
};

// Makes components by their identifiers. A new factory makes the product's own.
class KAL_AUTO_NODE_API ComponentFactory {
  public:
    using Creator = std::function<std::unique_ptr<Component>()>;

    ComponentFactory();

    // From now on the creator makes the component of that identifier.
    void Register(const std::string& identifier, Creator creator);

    // A new component. Throws Error 429 when none can be made that has the operations of its kind.
    template <class Kind>
    [[nodiscard]] std::unique_ptr<Kind> Create() const {
        std::unique_ptr<Component> made = Make(Kind::Identifier);
        auto* kind = dynamic_cast<Kind*>(made.get());
        if (kind == nullptr) {
            RefuseComponent(Kind::Identifier);
        }
        static_cast<void>(made.release());
        return std::unique_ptr<Kind>(kind);
    }

  private:
    [[nodiscard]] std::unique_ptr<Component> Make(const std::string& identifier) const;
    [[noreturn]] static void RefuseComponent(const std::string& identifier);

    std::map<std::string, Creator> creators_;
};

} // namespace KAL_AUTO_Node
