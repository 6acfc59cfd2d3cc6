struct CollisionsApiResponse: Codable, Hashable {
    let z: Double
}
struct User: Codable, Hashable {
    let id: Double
}
struct CollisionsA: Codable, Hashable {
    let users: [User]
}
struct UserA: Codable, Hashable {
    let name: String
}
struct CollisionsB: Codable, Hashable {
    let users: [UserA]
}
struct UserB: Codable, Hashable {
    let on: Bool
}
struct CollisionsC: Codable, Hashable {
    let users: [UserB]
}
struct CollisionsResponse: Codable, Hashable {
    let value: Double
    let value: CollisionsApiResponse
    let a: CollisionsA
    let b: CollisionsB
    let c: CollisionsC
    let firstName: Double
    let firstName: Bool
    let firstName: String
    let value: String?

    enum CodingKeys: String, CodingKey {
        case value = ""
        case value = "-"
        case firstName = "first name"
        case firstName = "first_name"
    }
}
