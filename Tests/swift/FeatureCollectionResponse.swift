struct FeatureGeometry: Codable, Hashable {
    let coordinates: [Double]
    let type: String
}
struct FeatureProperties: Codable, Hashable {
    let name: String
    let population: Double
}
struct Feature: Codable, Hashable {
    let bbox: [JSONValue]
    let geometry: FeatureGeometry
    let properties: FeatureProperties
    let type: String
}
struct FeatureCollectionResponse: Codable, Hashable {
    let bbox: [[Double]]
    let features: [Feature]
    let type: String
}

enum JSONValue
