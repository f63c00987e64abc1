#include "harmonet/engine/Particle.h"

#include "harmonet/engine/Matrix.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <memory>
#include <random>
#include <tuple>
#include <vector>

namespace Quon
{
namespace
{

/// Opens what derived classes see, and counts what the scene graph calls.
class Node : public Particle
{
public:
    explicit Node(const char* newName = nullptr) { SetName(newName); }

    void ResetGlobalBoundingCenter() const override
    {
        globalPositionStale = true;
        ++resets;
    }

    using Particle::boundingCenter;
    using Particle::boundingRadius;
    using Particle::boundingSphereStale;
    using Particle::globalPositionStale;
    mutable int resets = 0;
};

void ExpectNear(const Vector3& actual, const Vector3& expected, float tolerance = 1e-5f)
{
    EXPECT_NEAR(actual.x, expected.x, tolerance);
    EXPECT_NEAR(actual.y, expected.y, tolerance);
    EXPECT_NEAR(actual.z, expected.z, tolerance);
}

/// A quarter turn about Z: X goes to Y.
const Quaternion quarterZ{0.0f, 0.0f, std::sqrt(0.5f), std::sqrt(0.5f)};

TEST(Particle, TellsEveryNodeBelowThatItHasMoved)
{
    Node root;
    Node left;
    Node leftChild;
    Node right;
    root.Add(&left);
    root.Add(&right);
    left.Add(&leftChild);
    using Resets = std::vector<int>;
    const auto resetsOf = [&](auto action) {
        Resets resets;
        for (Node* node : {&root, &left, &leftChild, &right}) {
            node->GetGlobalPosition();
            node->resets = 0;
        }
        action();
        for (Node* node : {&root, &left, &leftChild, &right}) {
            EXPECT_EQ(node->globalPositionStale, node->resets > 0);
            resets.push_back(node->resets);
        }
        return resets;
    };
    EXPECT_EQ(resetsOf([&] { root.SetPosition(root.GetPosition()); }), (Resets{1, 1, 1, 1}));
    EXPECT_EQ(resetsOf([&] { left.SetOrientation(left.GetOrientation()); }), (Resets{0, 1, 1, 0}));
    EXPECT_EQ(resetsOf([&] { leftChild.SetPositionXY({1, 2}); }), (Resets{0, 0, 1, 0}));
    EXPECT_EQ(resetsOf([&] { static_cast<Particle&>(left) = Particle(); }), (Resets{0, 1, 1, 0}));
    EXPECT_EQ(resetsOf([&] { right.Add(&left); }), (Resets{0, 1, 1, 0}));
    // A node that is stale already hears of the next move too.
    EXPECT_EQ(resetsOf([&] {
        EXPECT_TRUE(right.Remove(&left));
        left.SetPosition({});
    }),
        (Resets{0, 2, 2, 0}));
}

TEST(Particle, IsAddedByTheNameOfANode)
{
    Node root("root");
    Node arm("arm");
    Node hand("hand");
    Node otherHand("hand");
    Node sound("sound");
    root.Add(&arm);
    arm.Add(&hand);
    root.Add(&otherHand);
    const std::tuple<Node*, const char*, Node*> good[] = {
        {&root, "hand", &hand}, {&root, "", &root}, {&root, "root", &root}, {&otherHand, "hand", &otherHand}};
    for (const auto& [top, name, parent] : good) {
        EXPECT_TRUE(top->Add(name, &sound)) << name;
        EXPECT_EQ(sound.GetParent(), parent) << name;
    }
    EXPECT_FALSE(root.Add("foot", &sound));
    EXPECT_FALSE(otherHand.Add("arm", &sound));
    EXPECT_FALSE(root.Add("arm", nullptr));
    EXPECT_FALSE(hand.Add(&hand));
    EXPECT_FALSE(hand.Add(&arm));
    EXPECT_FALSE(root.Remove(nullptr));
    EXPECT_FALSE(root.Remove(&sound));
    EXPECT_EQ(sound.GetParent(), &otherHand);
    EXPECT_EQ(arm.GetParent(), &root);
}

TEST(Particle, CopiesItsValueAndNotItsPlace)
{
    Node root;
    Node child;
    Node source("source");
    root.Add(&child);
    source.SetPosition({1, 2, 3});
    source.SetOrientation(quarterZ);
    source.Add(&root);
    const Particle copy(source);
    EXPECT_EQ(copy.GetParent(), nullptr);
    EXPECT_EQ(copy.GetFirstChild(), nullptr);
    EXPECT_EQ(copy.GetPosition(), source.GetPosition());
    child = source;
    EXPECT_EQ(child.GetParent(), &root);
    EXPECT_EQ(child.GetOrientation(), quarterZ);
    EXPECT_TRUE(child.GetName() == PString("source"));
}

TEST(Particle, CarriesItsSphereAlongUnlessThatIsStale)
{
    Node node;
    node.SetPosition({10, 0, 0});
    EXPECT_EQ(node.boundingCenter, (Vector3{10, 0, 0}));
    node.boundingCenter = {11, 0, 0};
    node.SetOrientation(quarterZ);
    ExpectNear(node.boundingCenter, {10, 1, 0});
    node.SetPosition({0, 0, 5});
    ExpectNear(node.boundingCenter, {0, 1, 5});
    node.SetPosition({std::numeric_limits<float>::quiet_NaN(), 0, 0});
    node.SetPosition({3, 0, 0});
    EXPECT_EQ(node.boundingCenter, (Vector3{3, 0, 0}));

    Node parent;
    parent.Add(&node);
    EXPECT_TRUE(parent.boundingSphereStale);
    EXPECT_FALSE(node.boundingSphereStale);
    parent.boundingCenter = {1, 0, 0};
    parent.SetOrientation(quarterZ);
    EXPECT_EQ(parent.boundingCenter, (Vector3{1, 0, 0}));
    parent.boundingSphereStale = false;
    node.Remove();
    EXPECT_TRUE(parent.boundingSphereStale);
}

TEST(Particle, TakesAReferenceFrameByRows)
{
    Node node;
    node.SetReferenceFrame({{{0, 1, 0, 0}, {-1, 0, 0, 0}, {0, 0, 1, 0}, {7, 8, 9, 1}}});
    ExpectNear(Rotate(node.GetOrientation(), {1, 0, 0}), {0, 1, 0});
    EXPECT_EQ(node.GetPosition(), (Vector3{7, 8, 9}));
}

TEST(Particle, CopesWithVeryDeepTrees)
{
    std::vector<std::unique_ptr<Node>> nodes;
    for (int i = 0; i < 5000; ++i) {
        nodes.push_back(std::make_unique<Node>());
        nodes.back()->SetPosition({1, 0, 0});
        if (i > 0) {
            ASSERT_TRUE(nodes[i - 1]->Add(nodes[i].get()));
        }
    }
    nodes.front()->SetPosition({2, 0, 0});
    EXPECT_EQ(nodes.back()->GetGlobalPosition().x, 5001.0f);
    EXPECT_FALSE(nodes.back()->Add(nodes.front().get()));
}

/// The same scene, plain and slow: each place is worked out anew from the root's to the node's.
struct ModelNode
{
    int parent = -1;
    Vector3 position;
    Quaternion orientation;
};

TEST(Particle, AgreesWithAPlainModelOfRandomScenes)
{
    std::mt19937 random(3);
    std::normal_distribution<float> normal;
    constexpr int nodeCount = 40;
    std::vector<std::unique_ptr<Node>> nodes(nodeCount);
    std::vector<ModelNode> model(nodeCount);
    for (auto& node : nodes) {
        node = std::make_unique<Node>();
    }
    for (int step = 0; step < 5000; ++step) {
        SCOPED_TRACE("step " + std::to_string(step));
        const int index = static_cast<int>(random() % nodeCount);
        const int other = static_cast<int>(random() % nodeCount);
        Node& node = *nodes[index];
        ModelNode& plain = model[index];
        const auto draw = [&] { return normal(random); };
        Vector3 place;
        Quaternion orientation = quarterZ;
        Vector3 direction = Rotate(orientation, {1, 2, 3});
        bool isBelow = false;
        switch (random() % 6) {
        case 0:
            for (int up = other; up >= 0; up = model[up].parent) {
                isBelow = isBelow || up == index;
            }
            ASSERT_EQ(nodes[other]->Add(&node), !isBelow);
            plain.parent = isBelow ? plain.parent : other;
            break;
        case 1:
            node.Remove();
            plain.parent = -1;
            break;
        case 2:
            plain.position = {draw(), draw(), draw()};
            node.SetPosition(plain.position);
            break;
        case 3:
            plain.orientation = Normalized({draw(), draw(), draw(), draw()});
            node.SetOrientation(plain.orientation);
            break;
        case 4:
            if (step % 10 == 0) {
                nodes[index] = std::make_unique<Node>();
                plain = ModelNode();
                for (ModelNode& orphan : model) {
                    orphan.parent = orphan.parent == index ? -1 : orphan.parent;
                }
            }
            break;
        default:
            for (int up = index; up >= 0; up = model[up].parent) {
                place = model[up].position + Rotate(model[up].orientation, place);
                direction = Rotate(model[up].orientation, direction);
            }
            ExpectNear(node.GetGlobalPosition(), place, 1e-4f);
            node.LocalToGlobal(orientation);
            ExpectNear(Rotate(orientation, {1, 2, 3}), direction, 1e-4f);
            break;
        }
    }
}

} // namespace
} // namespace Quon
