#include "harmonet/engine/Particle.h"

#include "harmonet/engine/Matrix.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <memory>
#include <random>
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
/// A quarter turn about Y: Z goes to X.
const Quaternion quarterY{0.0f, std::sqrt(0.5f), 0.0f, std::sqrt(0.5f)};

TEST(Particle, StandsWhereItsParentsPutIt)
{
    Node root;
    Node arm;
    Node hand;
    root.SetPosition({10, 0, 0});
    root.SetOrientation(quarterZ);
    arm.SetPosition({1, 0, 0});
    arm.SetOrientation(quarterY);
    hand.SetPosition({0, 0, 2});
    ASSERT_TRUE(root.Add(&arm));
    ASSERT_TRUE(arm.Add(&hand));
    ExpectNear(arm.GetGlobalPosition(), {10, 1, 0});
    // Within the arm's space (0, 0, 2) turns to (2, 0, 0), and that in the root's to (0, 2, 0).
    ExpectNear(hand.GetGlobalPosition(), {10, 3, 0});

    Quaternion orientation;
    arm.LocalToGlobal(orientation);
    ExpectNear(Rotate(orientation, {0, 0, 1}), {0, 1, 0});
    ExpectNear(Rotate(orientation, {1, 0, 0}), {0, 0, -1});

    arm.Remove();
    ExpectNear(hand.GetGlobalPosition(), {3, 0, 0});
}

TEST(Particle, TellsEveryNodeBelowThatItHasMoved)
{
    Node root;
    Node left;
    Node leftChild;
    Node right;
    root.Add(&left);
    root.Add(&right);
    left.Add(&leftChild);
    const std::vector<Node*> all = {&root, &left, &leftChild, &right};
    const auto resetsOf = [&all](auto action) {
        std::vector<int> resets;
        for (Node* node : all) {
            node->GetGlobalPosition();
            EXPECT_FALSE(node->globalPositionStale);
            node->resets = 0;
        }
        action();
        for (Node* node : all) {
            EXPECT_EQ(node->globalPositionStale, node->resets > 0);
            resets.push_back(node->resets);
        }
        return resets;
    };
    using Resets = std::vector<int>;
    EXPECT_EQ(resetsOf([&] { root.SetPosition(root.GetPosition()); }), (Resets{1, 1, 1, 1}));
    EXPECT_EQ(resetsOf([&] { left.SetOrientation(left.GetOrientation()); }), (Resets{0, 1, 1, 0}));
    EXPECT_EQ(resetsOf([&] { leftChild.SetPositionXY({1, 2}); }), (Resets{0, 0, 1, 0}));
    EXPECT_EQ(resetsOf([&] { static_cast<Particle&>(left) = Particle(); }), (Resets{0, 1, 1, 0}));
    EXPECT_EQ(resetsOf([&] { right.Add(&left); }), (Resets{0, 1, 1, 0}));
    EXPECT_EQ(resetsOf([&] { EXPECT_TRUE(right.Remove(&left)); }), (Resets{0, 1, 1, 0}));
    // A node that is stale already hears of the next move too.
    EXPECT_EQ(resetsOf([&] {
        left.SetPosition({});
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
    EXPECT_TRUE(root.Add("hand", &sound));
    EXPECT_EQ(sound.GetParent(), &hand);
    EXPECT_TRUE(root.Add(PString(), &sound));
    EXPECT_EQ(sound.GetParent(), &root);
    EXPECT_TRUE(root.Add("root", &sound));
    EXPECT_EQ(sound.GetParent(), &root);
    EXPECT_TRUE(otherHand.Add("hand", &sound));
    EXPECT_EQ(sound.GetParent(), &otherHand);

    EXPECT_FALSE(root.Add("foot", &sound));
    EXPECT_FALSE(otherHand.Add("arm", &sound));
    EXPECT_FALSE(root.Add("arm", nullptr));
    EXPECT_FALSE(root.Add("arm", &root));
    EXPECT_FALSE(hand.Add(&hand));
    EXPECT_FALSE(hand.Add(&arm));
    EXPECT_FALSE(root.Remove(nullptr));
    EXPECT_FALSE(root.Remove(&sound));
    EXPECT_EQ(sound.GetParent(), &otherHand);
    EXPECT_EQ(arm.GetParent(), &root);
    EXPECT_EQ(root.GetParent(), nullptr);
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

/// The same scene, plain and slow, in double.
struct ModelNode
{
    int parent = -1;
    double position[3] = {0, 0, 0};
    double orientation[4] = {0, 0, 0, 1};

    void ToParent(const double (&v)[3], double (&result)[3]) const
    {
        const auto& [x, y, z, w] = orientation;
        const double rows[3][3] = {{1 - 2 * y * y - 2 * z * z, 2 * x * y + 2 * w * z, 2 * x * z - 2 * w * y},
            {2 * x * y - 2 * w * z, 1 - 2 * x * x - 2 * z * z, 2 * y * z + 2 * w * x},
            {2 * x * z + 2 * w * y, 2 * y * z - 2 * w * x, 1 - 2 * x * x - 2 * y * y}};
        for (int column = 0; column < 3; ++column) {
            result[column] = position[column];
            for (int row = 0; row < 3; ++row) {
                result[column] += v[row] * rows[row][column];
            }
        }
    }
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
        switch (random() % 6) {
        case 0: {
            bool isBelow = false;
            for (int up = other; up >= 0; up = model[up].parent) {
                isBelow = isBelow || up == index;
            }
            ASSERT_EQ(nodes[other]->Add(&node), !isBelow);
            model[index].parent = isBelow ? model[index].parent : other;
            break;
        }
        case 1:
            node.Remove();
            model[index].parent = -1;
            break;
        case 2: {
            const Vector3 position{normal(random), normal(random), normal(random)};
            node.SetPosition(position);
            model[index].position[0] = position.x;
            model[index].position[1] = position.y;
            model[index].position[2] = position.z;
            break;
        }
        case 3: {
            const Quaternion q = Normalized({normal(random), normal(random), normal(random), normal(random)});
            node.SetOrientation(q);
            model[index].orientation[0] = q.x;
            model[index].orientation[1] = q.y;
            model[index].orientation[2] = q.z;
            model[index].orientation[3] = q.w;
            break;
        }
        case 4:
            if (step % 10 == 0) {
                nodes[index] = std::make_unique<Node>();
                model[index] = ModelNode();
                for (ModelNode& orphan : model) {
                    orphan.parent = orphan.parent == index ? -1 : orphan.parent;
                }
            }
            break;
        default: {
            double point[3] = {0, 0, 0};
            for (int up = index; up >= 0; up = model[up].parent) {
                double raised[3];
                model[up].ToParent(point, raised);
                std::copy(raised, raised + 3, point);
            }
            const Vector3 expected{
                static_cast<float>(point[0]), static_cast<float>(point[1]), static_cast<float>(point[2])};
            ExpectNear(node.GetGlobalPosition(), expected, 1e-4f);
            break;
        }
        }
    }
}

} // namespace
} // namespace Quon
