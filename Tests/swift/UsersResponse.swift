struct UserAddressGeo: Codable, Hashable {
    let lat: Double
    let lng: Double
}
struct UserAddress: Codable, Hashable {
    let geo: UserAddressGeo
    let street: String
}
struct Company: Codable, Hashable {
    let catchPhrase: String
    let name: String

    enum CodingKeys: String, CodingKey {
        case catchPhrase = "catch-phrase"
    }
}
struct User: Codable, Hashable {
    let address: UserAddress
    let companies: [Company]
    let email: String?
    let id: Double
    let isActive: Bool
    let name: String
    let roles: [String]

    enum CodingKeys: String, CodingKey {
        case isActive = "is_active"
    }
}
struct UsersResponse: Codable, Hashable {
    let items: [User]
}
